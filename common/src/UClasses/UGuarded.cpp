#include "UGuarded.h"

#include "LogRecord.h"
#include "UException.h"

namespace {

void record(const UCaughtIn& in, const char* text) {
    try {
        writeLogRecord(1, in.place, "", "EXCEPTION caught: " + CString(text));
    } catch (...) {
        // No memory for the text: the exception itself is on record already.
    }
}

}  // namespace

int UEndCaught(const UCaughtIn& in, UCaughtText text) noexcept {
    UException failure;
    try {
        throw;
    } catch (const UBreakException&) {
        return 0;
    } catch (const UException& e) {
        failure = e;
    } catch (...) {
        failure.HandleException();
    }
    const bool own = text == UCaughtText::ofException && failure.isDefined();
    record(in, own ? failure.GetErrorMessage() : in.operation);
    return failure.GetErrorCode();
}
