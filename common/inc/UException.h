#pragma once

#include <cstdarg>
#include <memory>

/// The library's exception: an error code, a message and the place that raised it. Making one with
/// a message writes it to `errorLog` at once, so a failure is on record even if it is swallowed
/// later; whoever raises one adds no line of its own. `URaise.h` raises, `UGuarded.h` catches.
///
/// Each object owns copies of its texts and belongs to one thread. No operation raises anything: a
/// text for which there is no memory stays null, and that is logged.
class UException {
  public:
    /// Code -1, no texts; writes nothing.
    UException() = default;
    /// Code -1, no place, a message by the rules of `printf`, cut to 5119 characters.
    explicit UException(const char* format, ...) __attribute__((format(printf, 2, 3)));
    /// The same with a code.
    UException(int code, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// The same with a place. A name of more than 1000 characters is not stored.
    UException(int code, const char* file, const char* function, unsigned int line,
               const char* format, ...) __attribute__((format(printf, 6, 7)));
    /// A copy; writes nothing.
    UException(const UException& other);
    UException& operator=(const UException& other);
    virtual ~UException();

    /// Forgets everything; the message becomes `text` and the code -1. @return `text`.
    const char* operator=(const char* text);  // NOLINT(misc-unconventional-assign-operator)
    /// Forgets everything; the message becomes "unknown exception". @return `code`.
    int operator=(int code);  // NOLINT(misc-unconventional-assign-operator)

    /// Copies what `other` has of message, file and function, then its code and line.
    void Copy(const UException& other);
    /// Frees all texts and sets the line to 0; the code stays.
    void Cleanup();
    /// Starts afresh: texts null, line and code 0. Frees nothing; call `Cleanup` first on an object
    /// that holds texts.
    void InitByZero();

    /// Each stores a copy of `name`, or nothing when it is null or longer than 1000 characters.
    /// @return false when there is no memory for it.
    bool SetFileName(const char* name);
    bool SetFunctionName(const char* name);
    void SetLine(unsigned int line) { m_line = line; }
    /// Stores a copy of `text` as the message. @return the copy; null when there is none.
    const char* CopyMessage(const char* text);

    /// @return the texts, owned by the object; null where there is none.
    const char* GetErrorMessage() const { return m_message.get(); }
    const char* GetFileName() const { return m_fileName.get(); }
    const char* GetFunctionName() const { return m_functionName.get(); }
    unsigned int GetLine() const { return m_line; }
    int GetErrorCode() const { return m_errorCode; }
    /// @return whether there is a message.
    bool isDefined() const { return m_message != nullptr; }

    /// To be called in a catch-all handler: logs the description of a standard exception, and
    /// "Unknown exception" for any other, at this object's place. Elsewhere it does nothing.
    void HandleException() const noexcept;
    /// Writes `text` at this object's place to `errorLog`, at any level, with the code in front
    /// when that is not -1.
    void WriteToLog(const char* text) const noexcept;

  private:
    using Text = std::unique_ptr<char[]>;

    void Init(int code, const char* file, const char* function, unsigned int line,
              const char* format, va_list args) __attribute__((format(printf, 6, 0)));
    bool Store(Text& field, const char* text);
    bool StoreName(Text& field, const char* name);

    Text m_message;
    Text m_functionName;
    Text m_fileName;
    unsigned int m_line = 0;
    int m_errorCode = -1;
};

/// Leaves a guarded body early without an error; never logged.
class UBreakException : public UException {};
