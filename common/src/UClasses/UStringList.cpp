#include "UStringList.h"

#include <memory>

#include "OwnedItems.h"

int UStringList::addItem(const char* name, const char* value) {
    return addOwned(m_items, "UStringList::addItem - EXCEPTION",
                    [&] { return std::make_unique<UStringListItem>(name, value); });
}

const char* UStringList::getItem(int index, int which) const {
    const auto* const item = static_cast<const UStringListItem*>(m_items.getObject(index));
    return item != nullptr ? static_cast<const char*>(item->text(which)) : nullptr;
}

int UStringList::findItem(CString text, int which) const {
    const int field = which < 1 ? 0 : 1;
    return m_items.findObject([&](const UObject* object) {
        return static_cast<const UStringListItem*>(object)->text(field).Find(text) >= 0;
    });
}
