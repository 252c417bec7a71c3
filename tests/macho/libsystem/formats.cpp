#include <cstdio>
#include <cstdlib>
#include <string>

#include "symbol_table.h"
#include "variadic.h"

namespace {

using Text = const char*;

// On an ARM Mac a long double is a double: "%Lf" must not fetch this system's sixteen bytes.
#if defined(__aarch64__)

enum class Direction { print, scan };

std::string withPlainDoubles(Text format, Direction direction) {
    std::string result;
    while (*format != '\0') {
        if (*format != '%') {
            result += *format++;
            continue;
        }
        const std::size_t length = 1 + std::strspn(format + 1, "-+ #0'123456789.*$hljztqL");
        std::string conversion(format, length);
        format += length;
        const std::size_t large = conversion.find('L');
        const bool isReal = *format != '\0' && std::strchr("aAeEfFgG", *format) != nullptr;
        if (isReal && large != std::string::npos) {
            conversion[large] = 'l';  // which printing takes for granted
            if (direction == Direction::print) conversion.erase(large, 1);
        }
        result += conversion;
        if (*format == '[') {  // a set of characters may hold a percent sign
            const char* end = format + 1;
            if (*end == '^') ++end;
            if (*end == ']') ++end;
            while (*end != '\0' && *end != ']') ++end;
            result.append(format, end);
            format = end;
        }
        if (*format != '\0') result += *format++;
    }
    return result;
}

class PrintFormat {
  public:
    explicit PrintFormat(Text format) : m_format(withPlainDoubles(format, Direction::print)) {}
    operator Text() const { return m_format.c_str(); }

  private:
    std::string m_format;
};

class ScanFormat {
  public:
    explicit ScanFormat(Text format) : m_format(withPlainDoubles(format, Direction::scan)) {}
    operator Text() const { return m_format.c_str(); }

  private:
    std::string m_format;
};

double longDoubleOf(Text text, char** end) { return std::strtod(text, end); }

#else

using PrintFormat = Text;
using ScanFormat = Text;

#endif

}  // namespace

MAC_CALL int macPrintf(Text format, MacArguments arguments) {
    return std::vprintf(PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macFprintf(FILE* file, Text format, MacArguments arguments) {
    return std::vfprintf(file, PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macSnprintf(char* to, std::size_t size, Text format, MacArguments arguments) {
    return std::vsnprintf(to, size, PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macSnprintfL(char* to, std::size_t size, void* /*locale*/, Text format,
                          MacArguments arguments) {
    return std::vsnprintf(to, size, PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macAsprintf(char** to, Text format, MacArguments arguments) {
    return vasprintf(to, PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macAsprintfL(char** to, void* /*locale*/, Text format, MacArguments arguments) {
    return vasprintf(to, PrintFormat(format), hostArguments(arguments));
}
MAC_CALL int macSscanf(Text from, Text format, MacArguments arguments) {
    return std::vsscanf(from, ScanFormat(format), hostArguments(arguments));
}
MAC_CALL int macSscanfL(Text from, void* /*locale*/, Text format, MacArguments arguments) {
    return std::vsscanf(from, ScanFormat(format), hostArguments(arguments));
}
MAC_CALL int macFscanf(FILE* file, Text format, MacArguments arguments) {
    return std::vfscanf(file, ScanFormat(format), hostArguments(arguments));
}

MAC_VARIADIC_1(int, Printf, Text);
MAC_VARIADIC_2(int, Fprintf, FILE*, Text);
MAC_VARIADIC_3(int, Snprintf, char*, std::size_t, Text);
MAC_VARIADIC_4(int, SnprintfL, char*, std::size_t, void*, Text);
MAC_VARIADIC_2(int, Asprintf, char**, Text);
MAC_VARIADIC_3(int, AsprintfL, char**, void*, Text);
MAC_VARIADIC_2(int, Sscanf, Text, Text);
MAC_VARIADIC_3(int, SscanfL, Text, void*, Text);
MAC_VARIADIC_2(int, Fscanf, FILE*, Text);

namespace macho::libsystem {

void addFormats(SymbolTable& table) {
    table.addCall("_printf", varPrintf);
    table.addCall("_vprintf", macPrintf);
    table.addCall("_fprintf", varFprintf);
    table.addCall("_vfprintf", macFprintf);
    table.addCall("_snprintf", varSnprintf);
    table.addCall("_vsnprintf", macSnprintf);
    table.addCall("_snprintf_l", varSnprintfL);
    table.addCall("_asprintf", varAsprintf);
    table.addCall("_vasprintf", macAsprintf);
    table.addCall("_asprintf_l", varAsprintfL);
    table.addCall("_sscanf", varSscanf);
    table.addCall("_vsscanf", macSscanf);
    table.addCall("_sscanf_l", varSscanfL);
    table.addCall("_fscanf", varFscanf);
#if defined(__aarch64__)
    table.addCall("_strtold", longDoubleOf);
    table.addCall("_strtold_l", longDoubleOf);
#endif
}

}  // namespace macho::libsystem
