#include "ClientData.h"

#include <array>
#include <climits>
#include <cstddef>
#include <stdexcept>
#include <string_view>

#include "CMD5.h"
#include "CRFCBase64.h"

namespace {

// As long as a block of the hash, so it is the HMAC key as it stands.
constexpr std::array<unsigned char, 64> prelogon_preshared_key{
#include "prelogon_key.inc"
};
constexpr unsigned char kInnerMask = 0x36;
constexpr unsigned char kOuterMask = 0x5c;

// The hash of a pad, which is where every signature begins.
CMD5 hashOfPad(unsigned char mask) {
    std::array<unsigned char, prelogon_preshared_key.size()> pad;
    for (std::size_t i = 0; i < pad.size(); ++i) {
        pad[i] = static_cast<unsigned char>(prelogon_preshared_key[i] ^ mask);
    }
    CMD5 hash;
    hash.Update(pad.data(), static_cast<int>(pad.size()));
    return hash;
}

CString signatureOf(std::string_view message) {
    if (message.size() > INT_MAX) throw std::length_error("a message is too long to be signed");
    static const CMD5 inner = hashOfPad(kInnerMask);
    static const CMD5 outer = hashOfPad(kOuterMask);

    std::array<unsigned char, 16> digest;
    CMD5 hash = inner;
    hash.Update(reinterpret_cast<const unsigned char*>(message.data()),
                static_cast<int>(message.size()));
    hash.Final(digest.data());
    hash = outer;
    hash.Update(digest.data(), static_cast<int>(digest.size()));
    hash.Final(digest.data());

    CString signature;
    CRFCBase64::Encode(digest.data(), static_cast<int>(digest.size()), signature);
    return signature;
}

}  // namespace

CString signMessage(const char* message, const char* /*token*/) {
    return signatureOf(message == nullptr ? "" : message);
}

CString formatClientData(const char* session, const char* device_info, const char* agent_result,
                         const char* token) {
    CString record;
    record.Format("session=%s&device_info=%s&agent_result=%s&token=%s", session, device_info,
                  agent_result, token);
    const CString signature = signMessage(record, token);
    return CRFCBase64::Encode(record + "&signature=" + signature);
}
