#pragma once

#include "UList.h"

/// A text of a `UStrings`.
class UStringsItem : public UObject {
  public:
    /// A copy of `text`; no text for null or "".
    explicit UStringsItem(const char* text);
    /// A copy of `length` bytes; no text for null or no bytes.
    UStringsItem(const char* text, std::size_t length);
    ~UStringsItem() override { delete[] m_text; }
    UStringsItem(const UStringsItem&) = delete;
    UStringsItem& operator=(const UStringsItem&) = delete;

    /// @return the text, which the item owns; "" when there is none.
    operator const char*() const { return m_text != nullptr ? m_text : ""; }

    /// Removes trailing, then leading blanks; no other white space.
    void trim();

  private:
    char* m_text = nullptr;
};

/// A list of texts that can be split from one text and joined to one.
///
/// It owns its items; texts it gives out are good until their item goes. A failure is logged.
/// Threads are as with `UList`: adding and removing are locked, reading is not.
class UStrings : public UObject {
  public:
    /// Flags of `fromString`.
    static constexpr unsigned int kKeepDelimiters = 1;  ///< each one is an item, too
    static constexpr unsigned int kTrimItems = 2;       ///< of blanks

    /// No items; `toString` puts nothing between those that are added.
    UStrings() = default;
    /// As `Create`.
    UStrings(const char* text, char delimiter, unsigned int flags);
    ~UStrings() override;
    UStrings(const UStrings&) = delete;
    UStrings& operator=(const UStrings&) = delete;

    /// Stores the delimiter for `toString` and splits `text`.
    void Create(const char* text, char delimiter, unsigned int flags);

    /// Replaces all items by the pieces of `text` between delimiters, without the empty ones; a
    /// piece of blanks alone becomes an empty item when trimmed. A NUL delimits nothing, and null
    /// has no pieces. A piece for which there is no memory is left out. `text` must not be an
    /// item's own. @return 0, or -1 when any is left out.
    int fromString(const char* text, char delimiter, unsigned int flags);

    /// @return all items, with the stored delimiter between them; it is that of construction or
    /// `Create`, whatever `fromString` has split by. Raises what `CString` raises.
    CString toString() const;

    /// Appends a copy of `text`, or of `length` bytes; null is an empty item. @return 0, or -1.
    int addItem(const char* text);
    int addItem(const char* text, unsigned int length);

    /// Removes and deletes an item. @return as `UList::removeObject`.
    int removeItem(int index) { return m_items.deleteObject(index); }

    /// @return the text of an item, or null when there is no such item.
    const char* getItem(int index) const;

    /// @return the number of items.
    int getCount() const { return m_items.getCount(); }

    /// Deletes all items.
    void clear() { m_items.deleteObjects(); }

    /// @return the index of the first item that `text` begins with, on purpose not of the one that
    /// equals it, or -1, also for null. An empty item is the beginning of every text.
    int find(const char* text) const;

    /// As those of `UList`.
    void lock() { m_items.lock(); }
    void unlock() { m_items.unlock(); }

  private:
    int addPiece(const char* text, std::size_t length, unsigned int flags);

    UList m_items;
    char m_delimiter = '\0';
};
