// CDoubleArray: a growable array of doubles, for the plots' series and the error lists of a run.
#pragma once

#include <vector>

class CDoubleArray {
public:
    CDoubleArray() = default;
    ~CDoubleArray();
    CDoubleArray(const CDoubleArray&) = delete;
    CDoubleArray& operator=(const CDoubleArray&) = delete;

    int GetSize() const { return m_nSize; }
    double GetAt(int index) const { return m_pData[index]; }
    void SetAt(int index, double value) { m_pData[index] = value; }
    double* GetData() { return m_pData; }
    const double* GetData() const { return m_pData; }
    // Appends one element and returns its index.
    int Add(double value);
    // New elements read 0.0; kept elements keep their values. Size 0 frees the block; shrinking to any
    // other size keeps it. growBy -1 keeps the stored growth step.
    void SetSize(int newSize, int growBy = -1);

    double* m_pData = nullptr;

private:
    int m_nSize = 0;
    int m_nMaxSize = 0;
    int m_nGrowBy = 0;
};

// target becomes a copy of values: how a run's series and a plot's grid take the engine's vectors.
void CopyInto(CDoubleArray& target, const std::vector<double>& values);
