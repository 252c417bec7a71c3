#pragma once

#include <cstdarg>
#include <cstring>

// Calls with a variable number of arguments. A stand-in is written once, in the form that takes a
// list of arguments,
//
//     MAC_CALL int macPrintf(const char* format, MacArguments arguments) { ... }
//
// which is what an image calls as vprintf; MAC_VARIADIC_n adds the entry that it calls as printf,
// named varPrintf, with n named arguments.
//
// On an Intel Mac both are passed as here. On an ARM Mac every unnamed argument lies on the stack,
// in a slot of eight bytes, and a list is a plain pointer to the next one (Apple, "Writing ARM64
// Code for Apple Platforms"): there the entry hands its stack pointer on as the last argument.

#define MAC_CALL extern "C" __attribute__((used, visibility("hidden")))

#if defined(__aarch64__)

using MacArguments = char*;

/// The list in this system's form (Procedure Call Standard for the Arm 64-bit Architecture): on the
/// stack, nothing left in registers.
inline va_list hostArguments(MacArguments arguments) {
    va_list list;
    static_assert(sizeof list == 32);
    std::memset(&list, 0, sizeof list);
    std::memcpy(&list, &arguments, sizeof arguments);
    return list;
}

template <typename T>
T nextArgument(MacArguments& arguments) {
    T value;
    std::memcpy(&value, arguments, sizeof value);
    arguments += 8;
    return value;
}
#define MAC_NEXT(arguments, Type) nextArgument<Type>(arguments)

#define MAC_ENTRY(Name, count)                                              \
    MAC_CALL void var##Name();                                              \
    asm(".text\n.globl var" #Name "\n.hidden var" #Name "\n.type var" #Name \
        ", %function\nvar" #Name ":\n mov x" #count ", sp\n b mac" #Name "\n")
#define MAC_VARIADIC_1(Result, Name, A) MAC_ENTRY(Name, 1)
#define MAC_VARIADIC_2(Result, Name, A, B) MAC_ENTRY(Name, 2)
#define MAC_VARIADIC_3(Result, Name, A, B, C) MAC_ENTRY(Name, 3)
#define MAC_VARIADIC_4(Result, Name, A, B, C, D) MAC_ENTRY(Name, 4)

#else

using MacArguments = va_list;

#define hostArguments(arguments) arguments
#define MAC_NEXT(arguments, Type) va_arg(arguments, Type)

#define MAC_ENTRY(Result, Name, last, ...)                       \
    {                                                            \
        va_list arguments;                                       \
        va_start(arguments, last);                               \
        const Result result = mac##Name(__VA_ARGS__, arguments); \
        va_end(arguments);                                       \
        return result;                                           \
    }                                                            \
    static_assert(true)
#define MAC_VARIADIC_1(Result, Name, A) \
    static Result var##Name(A a, ...) MAC_ENTRY(Result, Name, a, a)
#define MAC_VARIADIC_2(Result, Name, A, B) \
    static Result var##Name(A a, B b, ...) MAC_ENTRY(Result, Name, b, a, b)
#define MAC_VARIADIC_3(Result, Name, A, B, C) \
    static Result var##Name(A a, B b, C c, ...) MAC_ENTRY(Result, Name, c, a, b, c)
#define MAC_VARIADIC_4(Result, Name, A, B, C, D) \
    static Result var##Name(A a, B b, C c, D d, ...) MAC_ENTRY(Result, Name, d, a, b, c, d)

#endif
