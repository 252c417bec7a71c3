#include "URootMatch.h"

int URootMatch::normalize(const char* text, CString& out, char /*delimiter*/) const {
    out = text;
    return 0;
}
