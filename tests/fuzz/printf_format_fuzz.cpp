// A format put together from all conversions, and its arguments: the text is what vsnprintf makes
// of them, cut at the estimate of the format's length.

#include "format_model.h"
#include "fuzz_input.h"

void fuzzOne(FuzzInput& input) { checkFormat(input); }
