#include "embedding.h"

#include <algorithm>

Embedding::~Embedding() {
    if (isAlive()) destroy();
}

NPError Embedding::create(const Parameters& parameters) {
    std::vector<char*> names;
    std::vector<char*> values;
    for (const auto& [name, value] : parameters) {
        names.push_back(const_cast<char*>(name));
        values.push_back(const_cast<char*>(value));
    }
    char type[] = "application/x-zerva-sslvpn";
    constexpr uint16 kEmbedded = 1;
    return m_plugin.newp(type, &m_handle, kEmbedded, static_cast<int16>(names.size()), names.data(),
                         values.data(), nullptr);
}

NPError Embedding::destroy() { return m_plugin.destroy(&m_handle, nullptr); }

void Embedding::deliverStream(const BrowserRequest& request, std::string_view answer,
                              const Delivery& how) {
    char type[] = "text/plain";
    NPStream stream{};
    stream.url = request.url.c_str();
    stream.end = static_cast<uint32>(answer.size());
    stream.notifyData = request.notifyData;
    uint16 mode = 0;
    m_plugin.newstream(&m_handle, type, &stream, 0, &mode);

    int32 offset = 0;
    while (!answer.empty()) {
        const int32 ready = m_plugin.writeready(&m_handle, &stream);
        const int32 most = how.chunk > 0 ? std::min(how.chunk, ready) : ready;
        std::string block(answer.substr(0, static_cast<std::size_t>(most)));
        const auto length = static_cast<int32>(block.size());
        m_plugin.write(&m_handle, &stream, offset, length, block.data());
        offset += length;
        answer.remove_prefix(block.size());
    }
    m_plugin.destroystream(&m_handle, &stream, how.streamReason);
}

void Embedding::notify(const BrowserRequest& request, NPReason reason) {
    m_plugin.urlnotify(&m_handle, request.url.c_str(), reason, request.notifyData);
}

void Embedding::deliver(const BrowserRequest& request, std::string_view answer,
                        const Delivery& how) {
    const BrowserRequest kept = request;  // the account grows while the plug-in answers
    if (how.withStream) deliverStream(kept, answer, how);
    if (kept.wantsNotice) notify(kept, how.noticeReason);
}
