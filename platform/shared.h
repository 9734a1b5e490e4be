// Fields that the window writes while a run reads them.
//
// Some settings stay live during a run: the window's data exchange writes the number of iterations, the
// desired error, the number of trials and the curve mode while the worker reads them at each use. Plain
// loads and stores of a field shared between threads have no defined meaning in C++; these make each one
// whole (relaxed: a run needs the new value soon, not in any order with other memory).
#pragma once

template <class T>
T AfxReadShared(const T& field) {
    T value;
    __atomic_load(&field, &value, __ATOMIC_RELAXED);
    return value;
}

template <class T>
void AfxWriteShared(T& field, T value) {
    __atomic_store(&field, &value, __ATOMIC_RELAXED);
}
