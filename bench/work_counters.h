#pragma once

#include <cstddef>

/// What a program linked with work_counters.cpp has done so far.
struct WorkCounters {
    size_t allocations = 0;
    size_t bytesCopied = 0;
};

extern WorkCounters workCounters;
