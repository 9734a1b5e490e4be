#include "workspace/doublearray.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "engine/memory.h"

CDoubleArray::~CDoubleArray() { delete[] m_pData; }

int CDoubleArray::Add(double value) {
    const int index = m_nSize;
    SetSize(m_nSize + 1);
    m_pData[index] = value;
    return index;
}

void CDoubleArray::SetSize(int newSize, int growBy) {
    if (growBy >= 0) m_nGrowBy = growBy;
    if (newSize <= 0) {
        delete[] m_pData;
        m_pData = nullptr;
        m_nSize = m_nMaxSize = 0;
        return;
    }
    if (newSize <= m_nMaxSize) {
        // Elements that come newly into use read 0.0, also those that were in use before a shrink.
        if (newSize > m_nSize) std::fill(m_pData + m_nSize, m_pData + newSize, 0.0);
        m_nSize = newSize;
        return;
    }
    // Grow geometrically so that appending one element at a time stays linear overall.
    int step = m_nGrowBy > 0 ? m_nGrowBy : std::max(4, std::min(m_nSize / 2, 1 << 20));
    const int capacity = std::max(newSize, m_nMaxSize + step);
    if (!engine::DoublesFit(capacity)) throw std::bad_alloc();  // refused before the system grants what it lacks
    double* block = new double[static_cast<size_t>(capacity)];
    if (m_nSize > 0) std::memcpy(block, m_pData, sizeof(double) * static_cast<size_t>(m_nSize));
    std::fill(block + m_nSize, block + newSize, 0.0);
    delete[] m_pData;
    m_pData = block;
    m_nMaxSize = capacity;
    m_nSize = newSize;
}

void CopyInto(CDoubleArray& target, const std::vector<double>& values) {
    target.SetSize(static_cast<int>(values.size()));
    for (size_t i = 0; i < values.size(); ++i) target.SetAt(static_cast<int>(i), values[i]);
}
