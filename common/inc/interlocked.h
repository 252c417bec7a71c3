#pragma once

// Atomic counting on 64-bit words, under the names this library has always used for it.
// Any thread may call any of these on one word; nothing is owned.

static_assert(sizeof(long) == 8, "the counts of this library are 64 bits wide");

/// Adds 1 to `*value` as one step, ordered against the memory accesses around it.
/// @return the new value.
inline long InterlockedIncrement(long volatile* value) {
    return __atomic_add_fetch(value, 1L, __ATOMIC_ACQ_REL);
}

/// Subtracts 1 from `*value` as one step, ordered against the memory accesses around it.
/// @return the new value.
inline long InterlockedDecrement(long volatile* value) {
    return __atomic_sub_fetch(value, 1L, __ATOMIC_ACQ_REL);
}
