#pragma once

#include <cstdarg>
#include <cstddef>

/// The arguments of a printf-style format, read in the types that the C library itself reads.
///
/// Conversions are met left to right and each takes its arguments from a list of the object's own.
/// Reading ends for good at a conversion that printf does not know, or that names its argument by
/// position: no argument is ever read as a type that it may not have.
class PrintfArguments {
  public:
    /// What one conversion took.
    struct Conversion {
        /// Its '%' in the format.
        const char* begin = nullptr;
        /// The argument of '*' as width and as precision; 0 where there is none.
        int width = 0;
        int precision = 0;
        /// The argument of an 8-bit 's', which may be null.
        const char* text = nullptr;
    };

    /// Starts at the beginning of `format`; both must outlive the object. Texts within the `size`
    /// bytes at `own` are looked out for.
    PrintfArguments(const char* format, va_list args, const char* own, std::size_t size);
    ~PrintfArguments();
    PrintfArguments(const PrintfArguments&) = delete;
    PrintfArguments& operator=(const PrintfArguments&) = delete;

    /// Reads on to the conversion that begins at `percent`. Requires: `percent` does not go back.
    /// @return it, or an empty one when no conversion of printf's begins there.
    Conversion At(const char* percent);

    /// Reads the rest. @return whether any text argument stood in the memory looked out for.
    bool TookOwnText();

  private:
    // Every longer integer has 64 bits.
    enum class Length { none, longer, longDouble };

    bool Next();
    bool ReadNumber(int& fromList);
    Length ReadLength();
    bool TakeArgument(Length length, char conversion);
    void TakeText(Length length);
    template <typename T>
    void Skip();

    const char* m_at;
    va_list m_args;
    const char* m_own;
    std::size_t m_ownSize;
    bool m_tookOwnText = false;
    Conversion m_last;
};
