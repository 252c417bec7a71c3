#pragma once

/// The `main` of test programs that write below /Library, HOME or /tmp, open sockets, or signal
/// processes: linking `zerva_sandbox_main` gives a GoogleTest program a `main` that runs the
/// program again inside scripts/sandbox, so that nothing of the machine is touched. Listing the
/// tests needs no sandbox.
///
/// Arguments, beside GoogleTest's own:
///   --sandbox-user=root|user   who the tests run as; an ordinary user unless said otherwise
///   --sandbox-as-pid-1         the program is process 1 of its process namespace
///   --sandbox-small-disk       kSmallDisk is a disk of its own of kSmallDiskSize bytes
///   --sandbox-through=WORD     a command inside the sandbox that runs the program; one option
///                              for each of its words
///
/// `zerva_sandbox_test` in tests/CMakeLists.txt registers a program with them.

inline constexpr char kSmallDisk[] = "/small-disk";
inline constexpr int kSmallDiskSize = 256 << 10;

/// @return true when the tests run as root, where some rules differ.
bool sandboxUserIsRoot();
