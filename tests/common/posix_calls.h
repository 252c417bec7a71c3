#pragma once

/// Stands between the library's synchronisation and the platform's threads: programs linked with
/// `zerva_wrap_posix_calls` go through here. Counts calls of all threads, and fails those of the
/// thread that asked for it.

#include <sys/time.h>

#include <ctime>
#include <functional>
#include <vector>

enum class PosixCall {
    mutexattrInit,
    mutexattrSettype,
    mutexattrDestroy,
    mutexInit,
    mutexDestroy,
    mutexLock,
    mutexTrylock,
    mutexUnlock,
    condInit,
    condDestroy,
    condWait,
    condTimedwait,
    condSignal,
    condBroadcast,
    nanosleep,
    gettimeofday,
    end
};

/// Forgets counts, failures and times.
void resetPosixCalls();

/// The next `times` calls of this thread give `error`. An init that fails does nothing, a wait that
/// fails does not wait; any other call is carried out all the same.
void failPosixCall(PosixCall call, int error, int times = 1);

/// How often a call has been made since the reset.
int countOf(PosixCall call);

/// The calls that this thread makes in `action`, in their order.
std::vector<PosixCall> callsWithin(const std::function<void()>& action);

/// Waits until a call has been made `count` times since the reset, by whatever thread.
void awaitCount(PosixCall call, int count);

/// The deadlines of this thread's timed waits for conditions.
const std::vector<timespec>& waitDeadlines();

/// What happens in the next timed wait of this thread before the wait itself, with the lock free.
void inTheNextWait(std::function<void()> action);

/// The rests that this thread asked for, and what an interrupted rest leaves over.
const std::vector<timespec>& rests();
void leaveOver(timespec rest);

/// The times of day that this thread is told next, before it is told the true one again.
void tellTimes(const std::vector<timeval>& times);
