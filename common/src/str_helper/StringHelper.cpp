#include "StringHelper.h"

#include <cstdio>

#include "PatternParts.h"
#include "Wildcard.h"

void StringHelper::prepareFilter(const char* pattern, UStrings& parts) {
    splitParts(parts, pattern, '*', UStrings::kKeepDelimiters);
}

bool StringHelper::match(const char* text, const UStrings& parts) {
    return text != nullptr && matchWildcard(text, parts.getCount(), [&](int index) {
               return std::string_view(parts.getItem(index));
           });
}

int StringHelper::printList(const UStrings& list) {
    const int count = list.getCount();
    for (int i = 0; i < count; ++i) std::printf("-%s-\n", list.getItem(i));
    return count;
}
