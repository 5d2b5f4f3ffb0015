// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/vignetting_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace lumo {
namespace {

TEST(VignettingText, SixDigitsInStorageOrder)
{
    VignettingData vignetting;
    EXPECT_EQ(vignetting2string(vignetting), "");
    vignetting.coefficients.resize(2, 2);
    vignetting.coefficients << 1.23456789, 3, 0.0000123, -0.352;
    EXPECT_EQ(vignetting2string(vignetting), "1.23457,1.23e-05,3,-0.352");
}

TEST(VignettingText, ReadsOneColumn)
{
    const std::pair<const char*, std::vector<double>> cases[] = {
        {"", {}},         {"0.5", {0.5}},      {"1,2,3", {1, 2, 3}},
        {"1,2,", {1, 2}}, {"1,,3", {1, 0, 3}}, {"1,x,3", {1, 0, 3}},
        {",", {0}},
    };
    for (const auto& [text, values] : cases) {
        const VignettingData vignetting = string2vignetting(text);
        EXPECT_EQ(vignetting.type, VignettingType::Polynomial);
        EXPECT_EQ(vignetting.coefficients.cols(), 1);
        const double* data = vignetting.coefficients.data();
        EXPECT_EQ(std::vector<double>(data, data + vignetting.coefficients.rows()), values) << text;
    }
}

} // namespace
} // namespace lumo
