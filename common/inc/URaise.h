#pragma once

#include "SourcePlace.h"
#include "UException.h"
#include "createString.h"

/// The function that raises, and where in it: made from the function's qualified name, at the place
/// of the call.
struct URaisedIn {
    URaisedIn(const char* name, SourcePlace where = SourcePlace::current())
        : function(name), place(where) {}

    const char* function;
    SourcePlace place;
};

/// Raises a `UException` with code -1 and the message "EXCEPTION - " followed by what failed and by
/// up to three details, which may be of any type that `createString` takes:
///
///     URaise("UFileErrorLog::WriteLogByte", "fwrite() failed (error)", errno);
///
/// Making the exception has logged it. Any thread may call this; nothing is kept.
template <typename... Details>
requires(sizeof...(Details) <= 3)
    [[noreturn]] void URaise(const URaisedIn& in, const char* failed, const Details&... details) {
    constexpr const char* format = sizeof...(Details) == 0   ? "EXCEPTION - %s"
                                   : sizeof...(Details) == 1 ? "EXCEPTION - %s, %s"
                                   : sizeof...(Details) == 2 ? "EXCEPTION - %s, %s, %s"
                                                             : "EXCEPTION - %s, %s, %s, %s";
    throw UException(-1, sourceUnit(in.place.file), in.function, in.place.line, format, failed,
                     static_cast<const char*>(createString(details))...);
}
