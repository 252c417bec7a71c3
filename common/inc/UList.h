#pragma once

#include "AutoMemory.h"
#include "UAutoSync.h"
#include "UCriticalSection.h"
#include "UObject.h"

/// An ordered list of objects that it does not own, except where an operation deletes them.
///
/// Memory is exact: the list holds as many pointers as it has entries, and every change moves to
/// another size. A failure is logged and leaves the list as it was.
///
/// Threads: operations said to be locked exclude each other. `lock` is another lock, on purpose:
/// it serves callers that agree on it for reading several entries, and keeps nothing else out.
/// `getObject`, `getCount`, `emptyList` and `removeObject2` take no lock; no other thread may
/// change the list meanwhile.
class UList : public UObject {
  public:
    UList() = default;
    /// Leaves the objects alone.
    ~UList() override = default;
    UList(const UList&) = delete;
    UList& operator=(const UList&) = delete;

    /// Appends `object`, which may be null; locked. @return the new count, or -1.
    int addObject(UObject* object);

    /// Removes the entry at `index` and leaves its object alone; locked.
    /// @return the new count; 0 when there is no such entry; -1 after a failure.
    int removeObject(int index);

    /// As `removeObject`, without the lock.
    int removeObject2(int index);

    /// Removes the entry at `index` and deletes its object; locked. @return as `removeObject`.
    int deleteObject(int index);

    /// @return the object at `index`, or null when there is no such entry.
    UObject* getObject(int index) const { return has(index) ? objects()[index] : nullptr; }

    /// @return the number of entries.
    int getCount() const { return m_count; }

    /// Forgets all entries and leaves their objects alone.
    /// @return whether there is memory afterwards, which there is not.
    bool emptyList();

    /// Deletes every object, in order, and forgets all entries; locked.
    void deleteObjects();

    /// Holds `lock`, and keeps changes out, while it asks `matches` of one object after the other;
    /// of null, too, where that was added. @return the index of the first that matches, or -1.
    template <class Matches>
    int findObject(Matches matches) const {
        const UAutoSync callers(m_lock);
        const UAutoSync changes(m_sync);
        for (int i = 0; i < m_count; ++i) {
            if (matches(getObject(i))) return i;
        }
        return -1;
    }

    /// Removes the first object that `matches`, sought as by `findObject`, before anything else
    /// can change the list, and deletes it. @return as `removeObject`.
    template <class Matches>
    int deleteFirst(Matches matches) {
        UObject* object = nullptr;
        int result = 0;
        {
            const UAutoSync callers(m_lock);
            const UAutoSync changes(m_sync);
            result = takeObject(findObject(matches), object);
        }
        delete object;
        return result;
    }

    /// For callers that read several entries; see above.
    void lock() { m_lock.Lock(); }
    void unlock() { m_lock.Unlock(); }

  private:
    UObject** objects() const { return reinterpret_cast<UObject**>(m_Objects.getPtr()); }
    bool has(int index) const { return index >= 0 && index < m_count; }
    void append(UObject* object);
    int takeObject(int index, UObject*& object);

    mutable UCriticalSection m_lock;
    mutable UCriticalSection m_sync;
    int m_count = 0;
    AutoMemory m_Objects;
};
