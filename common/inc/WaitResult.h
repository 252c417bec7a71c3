#pragma once

/// What every timed wait of this library takes and gives. Timeouts are milliseconds; 0 means not to
/// wait.

/// A timeout: without limit.
constexpr unsigned int kWaitForever = 4294967295u;

/// Results: acquired or signalled, out of time, any other failure.
constexpr unsigned int kWaitAcquired = 0;
constexpr unsigned int kWaitTimedOut = 258;
constexpr unsigned int kWaitFailed = 4294967295u;
