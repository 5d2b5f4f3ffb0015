// SPDX-License-Identifier: Apache-2.0
#include "lumo/imagemodel/box.h"
#include "lumo/imagemodel/data_type.h"

#include <gtest/gtest.h>

namespace lumo {

TEST(DataType, HasItsTextAndItsSizeBothWays)
{
    const struct
    {
        DataType type;
        const char* text;
        int bytes;
    } cases[] = {
        {DataType::Unknown, "unknown", 0}, {DataType::UInt8, "uint8", 1},
        {DataType::UInt16, "uint16", 2},   {DataType::Int16, "int16", 2},
        {DataType::UInt32, "uint32", 4},   {DataType::Int32, "int32", 4},
        {DataType::Float32, "float32", 4}, {DataType::Float64, "float64", 8},
        {DataType(8), "unknown", 0}, // a number from a file, say
    };
    for (const auto& [type, text, bytes] : cases) {
        EXPECT_EQ(text::toString(type), QLatin1String(text));
        EXPECT_EQ(bytesPerSample(type), bytes) << text;
        bool ok = false;
        const bool known = bytes > 0;
        EXPECT_EQ(text::fromString<DataType>(text, &ok), known ? type : DataType::Unknown);
        EXPECT_EQ(ok, known) << text;
    }
    for (const char* other : {"", "Uint8", "uint8 ", "1"}) {
        bool ok = true;
        EXPECT_EQ(text::fromString<DataType>(other, &ok), DataType::Unknown) << other;
        EXPECT_FALSE(ok) << other;
    }
    EXPECT_EQ(text::fromString<DataType>("int16"), DataType::Int16);
}

TEST(Box, StartsEmptyAtTheOrigin)
{
    const box none{};
    EXPECT_EQ(none.min_corner().x(), 0);
    EXPECT_EQ(none.min_corner().y(), 0);
    EXPECT_EQ(none.max_corner().x(), 0);
    EXPECT_EQ(none.max_corner().y(), 0);
}

} // namespace lumo
