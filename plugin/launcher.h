#pragma once

// The service's process: starting it, stopping it, telling whether it runs. No state is kept; each
// call reads the service's pid file afresh.

/// What LaunchVPN returns.
enum LaunchResult : int {
    kServiceStarted = 0,        ///< the program ran and exited, with any status but 2
    kServiceAlreadyRuns = -1,   ///< the pid file names a live process called nevo
    kServiceNotInstalled = -2,  ///< the program exited with status 2
    kLaunchFailed = -5          ///< no program ran to its end, or stop mode
};

/// @return whether the system's process table holds `pid` with the short name "nevo". A table that
/// cannot be read is logged and counts as no.
bool NevoOwnsPid(int pid);

/// Starts or stops the service.
///
/// With `stop` 0: unless the service runs already, starts its program, hands it `launchData` on
/// standard input and blocks until the program exits, which it is expected to do after it has
/// handed its work on. With any other `stop`: sends SIGTERM to whatever the pid file names, without
/// a look at the number; `launchData` is only logged.
/// @return a LaunchResult.
int LaunchVPN(const char* launchData, int stop);
