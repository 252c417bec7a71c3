#include "CArray.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int kSmallestStep = 4;
constexpr int kLargestStep = 1024;

void zero(unsigned char* data, int from, int to) {
    if (from < to) std::memset(data + from, 0, static_cast<std::size_t>(to - from));
}

}  // namespace

using ByteArray = CArray<unsigned char, unsigned char>;

int ByteArray::grownSize(int newSize, int growBy) const {
    const int step = growBy != 0 ? growBy : std::clamp(m_nSize / 8, kSmallestStep, kLargestStep);
    const long long stepped = static_cast<long long>(m_nMaxSize) + step;
    return static_cast<int>(std::clamp<long long>(stepped, newSize, INT_MAX));
}

void ByteArray::SetSize(int newSize, int growBy) {
    if (newSize <= 0) {
        delete[] m_pData;
        m_pData = nullptr;
        m_nSize = m_nMaxSize = m_nGrowBy = 0;
        return;
    }
    if (growBy == -1) growBy = m_nGrowBy;
    if (newSize > m_nMaxSize) {
        const int newMaxSize = m_pData == nullptr ? newSize : grownSize(newSize, growBy);
        auto* const newData = new unsigned char[static_cast<std::size_t>(newMaxSize)];
        if (m_nSize > 0) std::memcpy(newData, m_pData, static_cast<std::size_t>(m_nSize));
        delete[] m_pData;
        m_pData = newData;
        m_nMaxSize = newMaxSize;
    }
    zero(m_pData, m_nSize, newSize);
    m_nSize = newSize;
    m_nGrowBy = growBy;
}

void ByteArray::SetAtGrow(int index, unsigned char value) {
    if (index < 0) return;
    if (index == INT_MAX) throw std::length_error("a byte array is full");
    if (index >= m_nSize) SetSize(index + 1);
    m_pData[index] = value;
}

int ByteArray::Add(unsigned char value) {
    const int index = m_nSize;
    SetAtGrow(index, value);
    return index;
}
