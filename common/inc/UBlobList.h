#pragma once

#include "CArray.h"
#include "CString.h"
#include "UList.h"

/// A named blob of a `UBlobList`.
class UBlobListItem : public UObject {
  public:
    /// A copy of `size` bytes. Raises what there is no memory for.
    UBlobListItem(const char* name, const void* data, unsigned int size);

    /// @return the name, which the item owns.
    const CString& name() const { return m_name; }
    /// @return the bytes, which the item owns; null when there are none.
    const unsigned char* data() const { return m_data.GetData(); }
    /// @return their number.
    unsigned int size() const { return static_cast<unsigned int>(m_data.GetSize()); }

  private:
    CString m_name;
    CArray<unsigned char, unsigned char> m_data;
};

/// A list of named byte blobs, in the order they came; names may repeat.
///
/// It owns its items; data it gives out is good until its item goes. A failure is logged. Threads
/// are as with `UList`: adding, removing and finding are locked, and removing by name is one step;
/// `getItem` is not locked, and by name finds first and reads then.
class UBlobList : public UObject {
  public:
    UBlobList() = default;
    ~UBlobList() override { m_items.deleteObjects(); }
    UBlobList(const UBlobList&) = delete;
    UBlobList& operator=(const UBlobList&) = delete;

    /// Appends a copy of `size` bytes, or of the array's; null has none.
    /// @return true; false when there is no memory or the bytes are more than 2147483647.
    bool addItem(const char* name, const void* data, unsigned int size);
    bool addItem(const char* name, CArray<unsigned char, unsigned char>* data);

    /// @return the index of the first item of exactly this name, or -1.
    int findItem(const char* name) const;

    /// @return an item's data, its size stored unless `size` is null; null, and nothing stored,
    /// when there is no such item. An empty blob's data is null, too.
    const unsigned char* getItem(int index, unsigned int* size) const;
    const unsigned char* getItem(const char* name, unsigned int* size) const;

    /// Removes and deletes an item, by name the first of exactly that name.
    /// @return as `UList::removeObject`.
    int removeItem(int index) { return m_items.deleteObject(index); }
    int removeItem(const char* name);

    /// As those of `UList`.
    void lock() { m_items.lock(); }
    void unlock() { m_items.unlock(); }

  private:
    UList m_items;
};
