// SPDX-License-Identifier: Apache-2.0
#include "lumo/pipeline/processing_step.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace lumo {
namespace {

TEST(ProcessingStep, EachHasANameOfItsOwnAndOtherNumbersHaveNone)
{
    std::set<QString> names{QStringLiteral("unknown")};
    for (int number = -1; number <= static_cast<int>(ProcessingStep::IndexMap); ++number) {
        const QString name = text::toString(ProcessingStep(number));
        EXPECT_FALSE(name.isEmpty()) << number;
        EXPECT_TRUE(names.insert(name).second) << number << qPrintable(name);
    }
    EXPECT_EQ(text::toString(ProcessingStep(-1)), "none");
    constexpr int kLowest = std::numeric_limits<int>::min();
    for (const int number : {-2, static_cast<int>(ProcessingStep::IndexMap) + 1, kLowest}) {
        EXPECT_EQ(text::toString(ProcessingStep(number)), "unknown") << number;
    }
}

} // namespace
} // namespace lumo
