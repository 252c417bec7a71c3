#include "UPatternMatch.h"

#include <utility>

#include "StringHelper.h"
#include "Wildcard.h"
#include "createString.h"

int UPatternMatch::_setPattern(const char* text) {
    const CString before(std::move(m_pattern));  // the new pattern may stand in it
    m_flatParts.clear();
    StringHelper::prepareFilter(text, m_parts);

    const auto count = static_cast<std::size_t>(m_parts.getCount());
    std::vector<std::string_view> flat;
    flat.reserve(count);
    for (int i = 0; i < m_parts.getCount(); ++i) flat.emplace_back(m_parts.getItem(i));
    m_pattern = text;
    m_flatParts = std::move(flat);
    return 0;
}

bool UPatternMatch::MatchText(std::string_view text) const {
    return matchWildcard(text, static_cast<int>(m_flatParts.size()), [this](int index) {
        return m_flatParts[static_cast<std::size_t>(index)];
    });
}

bool UPatternMatch::matchAsDWORD(unsigned int value) const { return match(createString(value)); }
