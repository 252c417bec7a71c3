#pragma once

#include "choices.h"

/// Takes a few texts that share blocks through `steps` operations, beside a plain model of each;
/// after every one, contents, terminators and reference counts must agree. Ends at the first
/// failure.
void runCStringScript(Choices& choices, int steps);
