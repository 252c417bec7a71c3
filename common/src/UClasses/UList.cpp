#include "UList.h"

#include <algorithm>
#include <utility>

#include "UGuarded.h"
#include "URaise.h"

int UList::addObject(UObject* object) {
    int result = -1;
    UGuarded("UList::addObject - EXCEPTION", [&] {
        const UAutoSync sync(m_sync);
        append(object);
        result = m_count;
    });
    return result;
}

void UList::append(UObject* object) {
    try {
        m_Objects.expand(sizeof object);
    } catch (const UException&) {
        URaise("UList::addObject", "m_Objects.realloc error (m_count+1)", m_count + 1);
    }
    objects()[m_count++] = object;
}

int UList::removeObject(int index) {
    UObject* object = nullptr;
    return takeObject(index, object);
}

int UList::deleteObject(int index) {
    UObject* object = nullptr;
    const int result = takeObject(index, object);
    delete object;
    return result;
}

int UList::takeObject(int index, UObject*& object) {
    int result = -1;
    UGuarded("UList::removeObject - EXCEPTION", [&] {
        const UAutoSync sync(m_sync);
        object = getObject(index);
        result = removeObject2(index);
    });
    return result;
}

int UList::removeObject2(int index) {
    if (!has(index)) return 0;
    UObject** const entry = objects() + index;
    std::copy(entry + 1, objects() + m_count, entry);
    --m_count;
    m_Objects.truncate(static_cast<unsigned int>(m_count) * sizeof *entry);
    return m_count;
}

bool UList::emptyList() {
    m_count = 0;
    return m_Objects.malloc(0) != nullptr;
}

void UList::deleteObjects() {
    UGuarded("UList::deleteObjects() - EXCEPTION", [&] {
        const UAutoSync sync(m_sync);
        // An entry is forgotten before its object goes: its destructor may come back to the list.
        for (int i = 0; i < m_count; ++i) delete std::exchange(objects()[i], nullptr);
        emptyList();
    });
}
