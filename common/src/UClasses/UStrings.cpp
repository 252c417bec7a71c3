#include "UStrings.h"

#include <cstring>
#include <memory>

#include "../m_strings/TextLength.h"
#include "CString.h"
#include "OwnedItems.h"

UStringsItem::UStringsItem(const char* text)
    : UStringsItem(text, text != nullptr ? std::strlen(text) : 0) {}

UStringsItem::UStringsItem(const char* text, std::size_t length) {
    if (text == nullptr || length == 0) return;
    m_text = new char[length + 1];
    std::memcpy(m_text, text, length);
    m_text[length] = '\0';
}

void UStringsItem::trim() {
    if (m_text == nullptr) return;
    std::size_t length = std::strlen(m_text);
    while (length > 0 && m_text[length - 1] == ' ') --length;
    m_text[length] = '\0';
    const std::size_t blanks = std::strspn(m_text, " ");
    std::memmove(m_text, m_text + blanks, length - blanks + 1);
}

UStrings::UStrings(const char* text, char delimiter, unsigned int flags) {
    Create(text, delimiter, flags);
}

UStrings::~UStrings() { clear(); }

void UStrings::Create(const char* text, char delimiter, unsigned int flags) {
    m_delimiter = delimiter;
    fromString(text, delimiter, flags);
}

int UStrings::fromString(const char* text, char delimiter, unsigned int flags) {
    clear();
    if (text == nullptr) return 0;
    int result = 0;
    const char* const end = text + std::strlen(text);
    const auto nextDelimiter = [&] {
        return static_cast<const char*>(
            std::memchr(text, delimiter, static_cast<std::size_t>(end - text)));
    };
    while (const char* const at = nextDelimiter()) {
        result |= addPiece(text, static_cast<std::size_t>(at - text), flags);
        if ((flags & kKeepDelimiters) != 0) result |= addItem(at, 1);
        text = at + 1;
    }
    return result | addPiece(text, static_cast<std::size_t>(end - text), flags);
}

int UStrings::addPiece(const char* text, std::size_t length, unsigned int flags) {
    if (length == 0) return 0;
    return addOwned(m_items, "UStrings::fromString - EXCEPTION", [&] {
        auto item = std::make_unique<UStringsItem>(text, length);
        if ((flags & kTrimItems) != 0) item->trim();
        return item;
    });
}

CString UStrings::toString() const {
    std::size_t length = 0;
    for (int i = 0; i < getCount(); ++i) length += std::strlen(getItem(i)) + 1;
    CString text;
    text.GetBuffer(textLength(length));
    text.ReleaseBuffer(0);
    for (int i = 0; i < getCount(); ++i) {
        if (i > 0) text += m_delimiter;
        text += getItem(i);
    }
    return text;
}

int UStrings::addItem(const char* text) {
    return addOwned(m_items, "UStrings::addItem - EXCEPTION",
                    [&] { return std::make_unique<UStringsItem>(text); });
}

int UStrings::addItem(const char* text, unsigned int length) {
    return addOwned(m_items, "UStrings::addItem - EXCEPTION",
                    [&] { return std::make_unique<UStringsItem>(text, length); });
}

const char* UStrings::getItem(int index) const {
    const auto* const item = static_cast<const UStringsItem*>(m_items.getObject(index));
    return item != nullptr ? static_cast<const char*>(*item) : nullptr;
}

int UStrings::find(const char* text) const {
    if (text == nullptr) return -1;
    for (int i = 0; i < getCount(); ++i) {
        const char* const item = getItem(i);
        if (std::strncmp(item, text, std::strlen(item)) == 0) return i;
    }
    return -1;
}
