#pragma once

#include <cstdarg>

class IUErrorLog;

/// Formats by the rules of `CString::FormatV` and gives the text to `log`'s `WriteLogStr`. The
/// library's own file log takes it without its being put together first: texts of megabytes are
/// not copied. Raises what the formatting or a log of the caller's raises.
void writeFormatted(IUErrorLog& log, const char* format, va_list args)
    __attribute__((format(printf, 2, 0)));
