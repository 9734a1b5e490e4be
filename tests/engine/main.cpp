// Engine test entry: the BLAS settled as the application settles it, so the tests run the same kernels.
#include <gtest/gtest.h>

#include "engine/blas_setup.h"

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
