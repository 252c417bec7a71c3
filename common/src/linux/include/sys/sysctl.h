#pragma once

#include <sys/types.h>

#include <cstddef>

// The BSD process listing as 64-bit macOS has it, for systems without one: the same names,
// numbers and record layout, filled from /proc. Only what the product asks for is supplied.

constexpr int CTL_KERN = 1;
constexpr int KERN_PROC = 14;
constexpr int KERN_PROC_ALL = 0;

constexpr int MAXCOMLEN = 16;

/// What the kernel knows of a process; fields that the product does not read are left zero.
struct extern_proc {
    alignas(8) char p_head[40];
    pid_t p_pid;
    char p_middle[199];
    char p_comm[MAXCOMLEN + 1];  ///< the command's short name, terminated
    char p_tail[36];
};

/// One record of the listing.
struct kinfo_proc {
    extern_proc kp_proc;
    alignas(8) char kp_eproc[352];
};

static_assert(offsetof(extern_proc, p_pid) == 40);
static_assert(offsetof(extern_proc, p_comm) == 243);
static_assert(sizeof(extern_proc) == 296);
static_assert(sizeof(kinfo_proc) == 648);

/// Lists all processes for the name {CTL_KERN, KERN_PROC, KERN_PROC_ALL}, with or without a
/// fourth number; the kernel's own record, process 0, comes first.
///
/// With a null `oldp` only `*oldlenp` is set, to the bytes needed and a few records more for
/// processes that start meanwhile. Otherwise `*oldlenp` is the buffer's size, and afterwards the
/// bytes that were filled.
/// @return 0, or -1 with errno: ENOENT for any other name, EPERM for an attempt to set a value,
/// ENOMEM when the buffer is too small, or what opening /proc or a process's entry gave when
/// descriptors or memory ran out.
int sysctl(int* name, u_int namelen, void* oldp, size_t* oldlenp, void* newp, size_t newlen);
