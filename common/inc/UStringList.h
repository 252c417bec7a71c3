#pragma once

#include "CString.h"
#include "UList.h"

/// A pair of a `UStringList`.
class UStringListItem : public UObject {
  public:
    /// Copies both texts. Raises what `CString` raises.
    UStringListItem(const char* name, const char* value) : m_name(name), m_value(value) {}

    /// @return the name for a `which` of 0, otherwise the value.
    const CString& text(int which) const { return which == 0 ? m_name : m_value; }

  private:
    CString m_name;
    CString m_value;
};

/// A list of names and values, in the order they came; names may repeat.
///
/// It owns its items; texts it gives out are good until their item goes. A failure is logged.
/// Threads are as with `UList`: adding, removing and finding are locked, `getItem` is not.
class UStringList : public UObject {
  public:
    UStringList() = default;
    ~UStringList() override { m_items.deleteObjects(); }
    UStringList(const UStringList&) = delete;
    UStringList& operator=(const UStringList&) = delete;

    /// Appends a pair. @return 0, or -1.
    int addItem(const char* name, const char* value);

    /// Removes and deletes a pair. @return as `UList::removeObject`.
    int removeItem(int index) { return m_items.deleteObject(index); }

    /// @return the name for a `which` of 0, otherwise the value; null when there is no such pair.
    const char* getItem(int index, int which) const;

    /// @return the index of the first pair whose name (for a `which` below 1) or value contains
    /// `text`, or -1.
    int findItem(CString text, int which) const;

    /// As those of `UList`.
    void lock() { m_items.lock(); }
    void unlock() { m_items.unlock(); }

  private:
    UList m_items;
};
