// The kernel family asked of the BLAS: only where it fell back below what the processor allows.
#include <gtest/gtest.h>

#include <string>

#include "engine/blas_setup.h"

TEST(BlasSetup, AsksForTheBestFamilyOnlyWhereTheBlasFellBelowIt) {
    struct Case {
        const char* current;
        const char* best;
        const char* asked;  // null: nothing changes
    };
    const Case cases[] = {
        {"Prescott", "SkylakeX", "SkylakeX"}, {"prescott", "Haswell", "Haswell"},
        {"Core2", "Sandybridge", "Sandybridge"}, {"Haswell", "SkylakeX", "SkylakeX"},
        {"Zen", "SkylakeX", "SkylakeX"},      {"SkylakeX", "SkylakeX", nullptr},
        {"Cooperlake", "SkylakeX", nullptr},   {"Haswell", "Haswell", nullptr},
        {"SkylakeX", "Haswell", nullptr},      {"Prescott", nullptr, nullptr},
        {"Neoverse", "SkylakeX", nullptr},     {nullptr, "SkylakeX", nullptr},
    };
    for (const Case& c : cases) {
        const char* asked = engine::BetterKernelFamily(c.current, c.best);
        const std::string label = std::string(c.current ? c.current : "(none)") + " with " + (c.best ? c.best : "none");
        if (c.asked == nullptr) EXPECT_EQ(asked, nullptr) << label;
        else EXPECT_STREQ(asked, c.asked) << label;
    }
}
