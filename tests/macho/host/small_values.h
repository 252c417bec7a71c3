#pragma once

#include <type_traits>

// Numbers of less than 32 bits, passed between an image for ARM Macs and this program. There the
// caller widens such arguments and the called function such results (Apple, "Writing ARM64 Code for
// Apple Platforms"); the Linux convention leaves their upper bits undefined, and compilers make use
// of that. On Intel nothing has to be done, and what is here does no harm.

namespace small_values {

template <typename T>
inline constexpr bool kIsSmall = (std::is_integral_v<T> || std::is_enum_v<T>)&&sizeof(T) < 4;

template <typename T>
using Wide =
    std::conditional_t<kIsSmall<T>, std::conditional_t<std::is_signed_v<T>, int, unsigned>, T>;

/// Calls a function of the image's with all arguments widened.
template <typename Result, typename... Parameters>
Result callImage(Result (*function)(Parameters...), std::type_identity_t<Parameters>... arguments) {
    static_assert(sizeof...(Parameters) <= 8, "arguments on the stack are packed differently");
    using Widened = Result (*)(Wide<Parameters>...);
    const auto widened = reinterpret_cast<Widened>(reinterpret_cast<void*>(function));
    return widened(static_cast<Wide<Parameters>>(arguments)...);
}

/// Stands between this program and one entry of the image's table: puts itself in the entry's
/// place, and hands calls on. One image at a time.
template <auto Entry>
class ToImage;

template <typename Table, typename Result, typename... Parameters,
          Result (*Table::*Entry)(Parameters...)>
class ToImage<Entry> {
  public:
    static void replaceIn(Table& table) {
        s_function = table.*Entry;
        table.*Entry = call;
    }

  private:
    static Result call(Parameters... arguments) { return callImage(s_function, arguments...); }
    static inline Result (*s_function)(Parameters...) = nullptr;
};

/// The other way: stands between the image and one entry of this program's table, and widens
/// results.
template <auto Entry>
class FromImage;

template <typename Table, typename Result, typename... Parameters,
          Result (*Table::*Entry)(Parameters...)>
class FromImage<Entry> {
  public:
    static void replaceIn(Table& table) {
        s_function = table.*Entry;
        table.*Entry = reinterpret_cast<Result (*)(Parameters...)>(reinterpret_cast<void*>(call));
    }

  private:
    static Wide<Result> call(Parameters... arguments) {
        return static_cast<Wide<Result>>(s_function(arguments...));
    }
    static inline Result (*s_function)(Parameters...) = nullptr;
};

}  // namespace small_values
