#include "CharacterSet.h"

#include <cstddef>
#include <cstdio>

#include "ScanSet.h"
#include "UGuarded.h"
#include "URaise.h"

namespace {

constexpr char kFunction[] = "checkCharacterSet()";

// The length of the run of members; raises what sscanf would have given for none.
std::size_t scan(const CString& text, const CString& set) {
    const auto members = ScanSet::parse(set);
    const std::size_t run = members ? members->runOf(text) : 0;
    if (run == 0) URaise(kFunction, "_stscanf() failed (res)", text.IsEmpty() ? EOF : 0);
    return run;
}

}  // namespace

bool checkCharacterSet(const CString& text, const CString& set, unsigned long maxLength) {
    bool result = false;
    UGuarded(
        "checkCharacterSet() - EXCEPTION",
        [&] {
            const auto length = static_cast<std::size_t>(text.GetLength());
            if (length > maxLength) {
                URaise(kFunction, "input variable length exceeds the maximum length");
            }
            result = scan(text, set) == length;
        },
        UCaughtText::ofException);
    return result;
}
