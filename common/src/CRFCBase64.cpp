#include "CRFCBase64.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "createString.h"

namespace {

using ByteArray = CArray<unsigned char, unsigned char>;

constexpr int kDigits = 64;
constexpr signed char kNoDigit = 127;
constexpr std::array<signed char, 256> kNoDigits = [] {
    std::array<signed char, 256> values{};
    values.fill(kNoDigit);
    return values;
}();

// Two digits for each value of 12 bits: half the look-ups of one digit at a time.
using DigitPair = std::array<char, 2>;
constexpr std::array<DigitPair, kDigits * kDigits> digitPairs(const char* digits) {
    std::array<DigitPair, kDigits * kDigits> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        pairs[i] = {digits[i / kDigits], digits[i % kDigits]};
    }
    return pairs;
}

// What a digit is in a group of 24 bits, by its place among the group's four. What is no digit is
// more than any group.
constexpr unsigned int kNoGroup = 1u << 24;
using GroupParts = std::array<std::array<unsigned int, 256>, 4>;
constexpr GroupParts groupParts(const char* digits) {
    GroupParts parts{};
    for (std::size_t place = 0; place < parts.size(); ++place) {
        parts[place].fill(kNoGroup);
        for (unsigned int i = 0; i < kDigits; ++i) {
            parts[place][static_cast<unsigned char>(digits[i])] = i << (18 - 6 * place);
        }
    }
    return parts;
}

// The count as the int that every result is.
int checkedLength(std::size_t length) {
    if (length >= INT_MAX) throw std::length_error("a Base64 result is too long");
    return static_cast<int>(length);
}

// The decoding of one text, whose bytes end before a NUL.
class Decoding {
  public:
    Decoding(const signed char* values, const GroupParts& parts, const char* text,
             std::size_t length, unsigned char* out)
        : m_values(values),
          m_parts(parts),
          m_at(reinterpret_cast<const unsigned char*>(text)),
          m_end(m_at + length),
          m_out(out) {}

    // Returns where the decoded bytes end.
    unsigned char* Run() {
        do {
            if (m_bits == 0) TakeWholeGroups();
        } while (TakeOne());
        TakeRest();
        return m_out;
    }

  private:
    void Emit(unsigned int byte) { *m_out++ = static_cast<unsigned char>(byte); }

    static unsigned char* PutGroup(unsigned char* out, unsigned int group) {
        *out++ = static_cast<unsigned char>(group >> 16);
        *out++ = static_cast<unsigned char>(group >> 8);
        *out++ = static_cast<unsigned char>(group);
        return out;
    }

    // Groups of four digits in a row, which is nearly all there is.
    void TakeWholeGroups() {
        // The bytes written could be anybody's: what the loop needs is kept out of their reach.
        const GroupParts& parts = m_parts;
        const unsigned char* at = m_at;
        const unsigned char* const end = m_end;
        unsigned char* out = m_out;
        for (; end - at >= 4; at += 4) {
            const unsigned int group =
                parts[0][at[0]] | parts[1][at[1]] | parts[2][at[2]] | parts[3][at[3]];
            if (group >= kNoGroup) break;
            out = PutGroup(out, group);
        }
        m_at = at;
        m_out = out;
    }

    // One character of whatever kind; returns false at the end.
    bool TakeOne() {
        if (m_at == m_end || *m_at >= 0x80) return false;
        const auto value = static_cast<unsigned int>(m_values[*m_at++]);
        if (value >= kDigits) return true;
        m_group = m_group << 6 | value;
        m_bits += 6;
        if (m_bits == 24) {
            m_out = PutGroup(m_out, m_group);
            m_group = 0;
            m_bits = 0;
        }
        return true;
    }

    // 12 bits left give one byte, 18 give two, 6 none.
    void TakeRest() {
        for (; m_bits >= 8; m_bits -= 8) Emit(m_group >> (m_bits - 8));
    }

    const signed char* m_values;
    const GroupParts& m_parts;
    const unsigned char* m_at;
    const unsigned char* m_end;
    unsigned char* m_out;
    unsigned int m_group = 0;
    int m_bits = 0;
};

}  // namespace

constinit std::array<signed char, 256> CRFCBase64::g_xlate = kNoDigits;
constinit bool CRFCBase64::g_bInitialized = false;

const signed char* CRFCBase64::digitValues() {
    // Threads that decode for the first time at once wait here for the one that fills the table.
    [[maybe_unused]] static const bool filled = [] {
        for (int i = 0; i < kDigits; ++i) {
            g_xlate[static_cast<unsigned char>(g_digits[i])] = static_cast<signed char>(i);
        }
        return g_bInitialized = true;
    }();
    return g_xlate.data();
}

int CRFCBase64::Encode(const unsigned char* data, int len, CString& out) {
    static constexpr auto pairs = digitPairs(g_digits);
    constexpr char pad = g_digits[kDigits];

    if (data == nullptr || len <= 0) return 0;
    const std::size_t length = (static_cast<std::size_t>(len) + 2) / 3 * 4;
    const int before = out.GetLength();
    const int after = checkedLength(static_cast<std::size_t>(before) + length);
    char* to = out.GetBuffer(after) + before;

    const auto put = [&to](unsigned int bits) {
        std::memcpy(to, &pairs[bits], sizeof(DigitPair));
        to += sizeof(DigitPair);
    };
    for (; len >= 3; len -= 3, data += 3) {
        const unsigned int group = unsigned{data[0]} << 16 | unsigned{data[1]} << 8 | data[2];
        put(group >> 12);
        put(group & 0xfff);
    }
    if (len == 1) {
        put(unsigned{data[0]} << 4);
        *to++ = pad;
        *to++ = pad;
    } else if (len == 2) {
        const unsigned int group = unsigned{data[0]} << 10 | unsigned{data[1]} << 2;
        put(group >> 6);
        *to++ = g_digits[group & 0x3f];
        *to++ = pad;
    }
    out.ReleaseBuffer(after);
    return static_cast<int>(length);
}

CString CRFCBase64::Encode(const char* text) {
    CString out;
    if (text == nullptr) return out;
    Encode(reinterpret_cast<const unsigned char*>(text), checkedLength(std::strlen(text)), out);
    return out;
}

int CRFCBase64::Decode(const char* text, ByteArray& out) {
    static constexpr GroupParts parts = groupParts(g_digits);
    const signed char* const values = digitValues();
    const std::size_t length = text == nullptr ? 0 : std::strlen(text);
    const std::size_t most = length / 4 * 3 + length % 4 * 3 / 4;
    if (most == 0) return 0;

    const int before = out.GetSize();
    out.SetSize(checkedLength(static_cast<std::size_t>(before) + most));
    unsigned char* const start = out.GetData() + before;
    const auto count = static_cast<int>(Decoding(values, parts, text, length, start).Run() - start);
    out.SetSize(before + count);
    return count;
}

int CRFCBase64::Decode(const char* text, CString& out) {
    ByteArray bytes;
    const int count = Decode(text, bytes);
    char* const buffer = out.GetBuffer(count + 1);
    if (count > 0) std::memcpy(buffer, bytes.GetData(), static_cast<std::size_t>(count));
    buffer[count] = '\0';
    out.ReleaseBuffer();
    return count;
}

CString CRFCBase64::Decode(const char* text) {
    ByteArray bytes;
    const int count = Decode(text, bytes);
    return {reinterpret_cast<const char*>(bytes.GetData()), count};
}

CString CRFCBase64::Decode(const char* text, unsigned int codePage) {
    ByteArray bytes;
    const int count = Decode(text, bytes);
    return createString(codePage, reinterpret_cast<const char*>(bytes.GetData()), count, nullptr);
}
