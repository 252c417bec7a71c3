#pragma once

#include "SourcePlace.h"

/// How a guarded operation names itself in the log when it caught something, such as
/// "toInt() - EXCEPTION", and where its guard stands: made at the place of the call.
struct UCaughtIn {
    UCaughtIn(const char* text, SourcePlace where = SourcePlace::current())
        : operation(text), place(where) {}

    const char* operation;
    SourcePlace place;
};

/// What the log says of a caught `UException`.
enum class UCaughtText {
    ofOperation,  ///< the operation's own text
    ofException,  ///< the exception's message
};

/// To be called in a catch-all handler: ends the exception that is being handled as `UGuarded`
/// says.
/// @return the guarded body's result.
int UEndCaught(const UCaughtIn& in, UCaughtText text) noexcept;

/// Runs `body` and lets no exception out of it. A `UBreakException` ends the body early and counts
/// as success; a `UException` gives its code; anything else is logged by its description and gives
/// -1. Both failures are then recorded as "EXCEPTION caught: " and the operation's text when
/// `errorLog` is set and its level is at least 1.
/// @return 0, or the failure.
template <typename Body>
int UGuarded(const UCaughtIn& in, Body&& body, UCaughtText text = UCaughtText::ofOperation) {
    try {
        body();
        return 0;
    } catch (...) {
        return UEndCaught(in, text);
    }
}
