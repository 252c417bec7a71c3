#include "UBlobList.h"

#include <climits>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "OwnedItems.h"

namespace {

// Whether an item of the list has exactly this name.
auto hasName(const char* name) {
    return [name](const UObject* object) {
        return static_cast<const UBlobListItem*>(object)->name() == name;
    };
}

}  // namespace

UBlobListItem::UBlobListItem(const char* name, const void* data, unsigned int size) : m_name(name) {
    if (data == nullptr || size == 0) return;
    if (size > INT_MAX) throw std::length_error("blob is longer than 2 GiB");
    m_data.SetSize(static_cast<int>(size));
    std::memcpy(m_data.GetData(), data, size);
}

bool UBlobList::addItem(const char* name, const void* data, unsigned int size) {
    return addOwned(m_items, "UBlobList::addItem - EXCEPTION",
                    [&] { return std::make_unique<UBlobListItem>(name, data, size); }) == 0;
}

bool UBlobList::addItem(const char* name, CArray<unsigned char, unsigned char>* data) {
    if (data == nullptr) return addItem(name, nullptr, 0);
    return addItem(name, data->GetData(), static_cast<unsigned int>(data->GetSize()));
}

int UBlobList::findItem(const char* name) const { return m_items.findObject(hasName(name)); }

int UBlobList::removeItem(const char* name) { return m_items.deleteFirst(hasName(name)); }

const unsigned char* UBlobList::getItem(int index, unsigned int* size) const {
    const auto* const item = static_cast<const UBlobListItem*>(m_items.getObject(index));
    if (item == nullptr) return nullptr;
    if (size != nullptr) *size = item->size();
    return item->data();
}

const unsigned char* UBlobList::getItem(const char* name, unsigned int* size) const {
    return getItem(findItem(name), size);
}
