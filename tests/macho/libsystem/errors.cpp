#include "errors.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "symbol_table.h"

namespace macho::libsystem {

namespace {

struct Pair {
    int host;
    int mac;
};

// <sys/errno.h> of both. The first 34 are the same, but for the first two here.
constexpr Pair kErrors[] = {
    {EAGAIN, 35},       {EDEADLK, 11},         {EINPROGRESS, 36},     {EALREADY, 37},
    {ENOTSOCK, 38},     {EDESTADDRREQ, 39},    {EMSGSIZE, 40},        {EPROTOTYPE, 41},
    {ENOPROTOOPT, 42},  {EPROTONOSUPPORT, 43}, {ESOCKTNOSUPPORT, 44}, {EOPNOTSUPP, 102},
    {EPFNOSUPPORT, 46}, {EAFNOSUPPORT, 47},    {EADDRINUSE, 48},      {EADDRNOTAVAIL, 49},
    {ENETDOWN, 50},     {ENETUNREACH, 51},     {ENETRESET, 52},       {ECONNABORTED, 53},
    {ECONNRESET, 54},   {ENOBUFS, 55},         {EISCONN, 56},         {ENOTCONN, 57},
    {ESHUTDOWN, 58},    {ETIMEDOUT, 60},       {ECONNREFUSED, 61},    {ELOOP, 62},
    {ENAMETOOLONG, 63}, {EHOSTDOWN, 64},       {EHOSTUNREACH, 65},    {ENOTEMPTY, 66},
    {EUSERS, 68},       {EDQUOT, 69},          {ESTALE, 70},          {ENOLCK, 77},
    {ENOSYS, 78},       {EOVERFLOW, 84},       {ECANCELED, 89},       {EIDRM, 90},
    {ENOMSG, 91},       {EILSEQ, 92},          {EBADMSG, 94},         {EPROTO, 100}};

constexpr int kMacRange = 34;

// This system's errno is the mailbox: whoever asks for the Mac's collects what the last failing
// call left there.
int* errorPlace() {
    thread_local int macErrno = 0;
    if (errno != 0) {
        macErrno = macError(errno);
        errno = 0;
    }
    return &macErrno;
}

char* errorText(int error) { return std::strerror(hostError(error)); }

int copyErrorText(int error, char* buffer, std::size_t size) {
    const char* text = std::strerror(hostError(error));
    std::snprintf(buffer, size, "%s", text);
    return std::strlen(text) < size ? 0 : kMacRange;
}

}  // namespace

int macError(int hostError) {
    for (const Pair& pair : kErrors)
        if (pair.host == hostError) return pair.mac;
    return hostError;
}

int hostError(int macError) {
    for (const Pair& pair : kErrors)
        if (pair.mac == macError) return pair.host;
    return macError;
}

void addErrors(SymbolTable& table) {
    table.addCall("___error", errorPlace);
    table.addCall("_strerror", errorText);
    table.addCall("_strerror_r", copyErrorText);
}

}  // namespace macho::libsystem
