#include "UExpressionMatch.h"

#include <cerrno>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <string_view>
#include <utility>

#include "../m_strings/TextLength.h"
#include "Candidate.h"
#include "PatternParts.h"
#include "UDNSMatch.h"
#include "UDWORDMatch.h"
#include "UGuarded.h"
#include "UIPSubnetMatch.h"
#include "UPatternMatch.h"
#include "URaise.h"
#include "UTCPMatch.h"
#include "createString.h"

namespace {

// Null when there is no memory for it.
template <class Match>
URootMatch* makeMatcher(const char* pattern) {
    if (pattern == nullptr) return new (std::nothrow) Match;
    return new (std::nothrow) Match(pattern);
}

constexpr URootMatch* (*kMakers[])(const char* pattern) = {
    makeMatcher<UPatternMatch>, makeMatcher<UDWORDMatch>, makeMatcher<UIPSubnetMatch>,
    makeMatcher<UTCPMatch>,     makeMatcher<UDNSMatch>,
};

// The pieces of an expression in their kind's normal form, and the delimiter between them.
CString normalized(const char* expression, unsigned int type, char delimiter) {
    const std::unique_ptr<URootMatch> probe(UExpressionMatch::createMatchObject(type, nullptr));
    UStrings pieces;
    splitParts(pieces, expression, delimiter, UStrings::kTrimItems);
    UStrings normal("", delimiter, 0);
    for (int i = 0; i < pieces.getCount(); ++i) {
        CString out;
        if (probe->normalize(pieces.getItem(i), out, delimiter) != 0) {
            URaise("UExpressionMatch::setExpression()", "normalize() failed", pieces.getItem(i));
        }
        if (normal.addItem(out) != 0) throw std::bad_alloc();
    }
    return normal.toString();
}

// What to do with a matcher that matches: whether to go on to the next one.
constexpr auto kStop = [](const URootMatch& /*matcher*/) { return false; };

auto addTo(UStrings& hits) {
    return [&hits](const URootMatch& matcher) {
        hits.addItem(matcher.getPattern());
        return true;
    };
}

}  // namespace

UExpressionMatch::UExpressionMatch(const char* expression, unsigned int type, char delimiter) {
    setExpression(expression, type, delimiter);
}

UExpressionMatch::~UExpressionMatch() { Clear(); }

void UExpressionMatch::Clear() {
    m_type = -1;
    m_matchers.deleteObjects();
}

URootMatch* UExpressionMatch::createMatchObject(unsigned int type, const char* pattern) {
    constexpr const char* here = "UExpressionMatch::createMatchObject()";
    if (type >= std::size(kMakers)) URaise(here, "unknown type", type);
    URootMatch* const matcher = kMakers[type](pattern);
    if (matcher == nullptr) URaise(here, "error, type, pattern", errno, type, pattern);
    return matcher;
}

int UExpressionMatch::setExpression(const char* expression, unsigned int type, char delimiter) {
    Clear();
    const CString before(std::move(m_expression));  // the new expression may stand in it
    const int result = UGuarded("UExpressionMatch::setExpression() - EXCEPTION", [&] {
        const CString normal = normalized(expression, type, delimiter);
        AddMatchers(normal, type, delimiter);
        m_expression = normal;
        m_type = static_cast<int>(type);
    });
    if (result != 0) Clear();
    return result;
}

void UExpressionMatch::AddMatchers(const char* normal, unsigned int type, char delimiter) {
    UStrings pieces;
    splitParts(pieces, normal, delimiter, UStrings::kTrimItems);
    for (int i = 0; i < pieces.getCount(); ++i) {
        std::unique_ptr<URootMatch> matcher(createMatchObject(type, pieces.getItem(i)));
        if (m_matchers.addObject(matcher.get()) < 0) throw std::bad_alloc();
        static_cast<void>(matcher.release());
    }
}

// Asks the matchers, all of which are of the type `Match`, in order.
template <class Match, class Matches, class Found>
bool UExpressionMatch::Ask(const Matches& matches, const Found& found) const {
    bool any = false;
    for (int i = 0; i < m_matchers.getCount(); ++i) {
        const auto& matcher = static_cast<const Match&>(*m_matchers.getObject(i));
        if (!matches(matcher)) continue;
        any = true;
        if (!found(matcher)) break;
    }
    return any;
}

// Reads the candidate once, in the way of the matchers' kind, and asks them all with what it read.
template <class Found>
bool UExpressionMatch::Find(const char* text, const Found& found) const {
    if (text == nullptr) return false;
    switch (m_type) {
        case kNumber: {
            const std::optional<unsigned int> number = numberOf(text);
            return number &&
                   Ask<UDWORDMatch>([&](const auto& m) { return m.matchAsDWORD(*number); }, found);
        }
        case kSubnet: {
            const std::optional<unsigned int> address = addressOf(text);
            return address && Ask<UIPSubnetMatch>(
                                  [&](const auto& m) { return m.matchAsDWORD(*address); }, found);
        }
        case kTcp: {
            const UEndpointText endpoint(text);
            return Ask<UTCPMatch>([&](const auto& m) { return m.MatchEndpoint(endpoint); }, found);
        }
        case kDns: {
            CString lower(text);
            lower.MakeLower();
            const std::string_view host(lower);
            return Ask<UDNSMatch>([&](const auto& m) { return m.MatchLowerCase(host); }, found);
        }
        default: {
            const std::string_view view(text);
            return Ask<UPatternMatch>([&](const auto& m) { return m.MatchText(view); }, found);
        }
    }
}

template <class Found>
bool UExpressionMatch::Find(unsigned int value, const Found& found) const {
    if (m_type == kPattern) return Find(createString(value), found);
    return Ask<URootMatch>([&](const auto& m) { return m.matchAsDWORD(value); }, found);
}

bool UExpressionMatch::match(const char* text) const { return Find(text, kStop); }

bool UExpressionMatch::matchAsDWORD(unsigned int value) const { return Find(value, kStop); }

bool UExpressionMatch::match(const char* text, UStrings& hits) const {
    const CString candidate(text);  // which may be one of the hits
    hits.clear();
    return text != nullptr && Find(candidate, addTo(hits));
}

bool UExpressionMatch::matchAsDWORD(unsigned int value, UStrings& hits) const {
    hits.clear();
    return Find(value, addTo(hits));
}

CString UExpressionMatch::toString() const {
    std::size_t length = 0;
    for (int i = 0; i < m_matchers.getCount(); ++i) length += std::strlen(PatternAt(i)) + 1;
    CString text;
    text.GetBuffer(textLength(length));
    text.ReleaseBuffer(0);
    for (int i = 0; i < m_matchers.getCount(); ++i) {
        text += PatternAt(i);
        text += '\n';
    }
    return text;
}

const char* UExpressionMatch::PatternAt(int index) const {
    return static_cast<const URootMatch*>(m_matchers.getObject(index))->getPattern();
}
