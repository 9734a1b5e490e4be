// The cores a benchmark's own code may use, for one scope: 0 for all, 1 to time the same work on one core.
#pragma once

#include <cblas.h>

#include "engine/kernels.h"

class CBenchCores {
public:
    explicit CBenchCores(int cores) : m_blasThreads(openblas_get_num_threads()) {
        engine::kernels::LimitThreads(cores);
        if (cores > 0) openblas_set_num_threads(cores);
    }
    ~CBenchCores() {
        engine::kernels::LimitThreads(0);
        openblas_set_num_threads(m_blasThreads);
    }
    CBenchCores(const CBenchCores&) = delete;
    CBenchCores& operator=(const CBenchCores&) = delete;

private:
    int m_blasThreads;
};
