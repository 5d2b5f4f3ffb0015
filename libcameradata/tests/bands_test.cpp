// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/bands.h"

#include <gtest/gtest.h>

#include <limits>

namespace lumo {
namespace {

bands_t withGarbage()
{
    return {{"Green", 550, 40, 1}, {"garbage", 0, 0, 1}, {"NIR", 790, 40, 1}};
}

TEST(Bands, NamesMatchIgnoringCaseAndBlanksButInOrder)
{
    const bands_t bands{{"Red edge", 717, 10, 1}, {"NIR", 840, 40, 1}};
    EXPECT_TRUE(bands.sameNames(bands_t{{"RedEdge"}, {"nir"}}));
    EXPECT_TRUE(bands.sameNames(QStringList{" rededge ", "N I R"}));
    EXPECT_FALSE(bands.sameNames(bands_t{{"NIR"}, {"Red edge"}}));
    EXPECT_FALSE(bands.sameNames(bands_t{{"Red edge"}}));
    EXPECT_FALSE(bands == (bands_t{{"RedEdge", 717, 10, 1}, {"NIR", 840, 40, 1}}));
}

TEST(Bands, CentresMatchWithinHalfANanometre)
{
    const bands_t bands{{"A", 550, 0, 1}};
    EXPECT_TRUE(bands.sameCentralWaveLengths(bands_t{{"B", 550.5, 9, 1}}));
    EXPECT_FALSE(bands.sameCentralWaveLengths(bands_t{{"A", 550.6, 0, 1}}));
    EXPECT_FALSE(bands.sameCentralWaveLengths(bands_t{{"A", 0, 0, 1}}));
    EXPECT_FALSE(bands.sameCentralWaveLengths({}));
}

TEST(Bands, GarbageIsCountedAndRemoved)
{
    bands_t bands = withGarbage();
    EXPECT_EQ(bands.garbageBandCount(), 1u);
    bands.removeGarbage();
    EXPECT_EQ(bands.names(), (QStringList{"Green", "NIR"}));
}

TEST(Bands, CopyDataFillsZeroesOnlyAndNeedsCopySaysWhetherItWould)
{
    const bands_t source{{"Red", 660, 40, 0.5}, {"Blue", 475, 20, 0.25}};
    bands_t bands{{"red", 0, 10, 0}, {"Unknown", 0, 0, 0}};
    EXPECT_TRUE(bands.needsCopyDataFrom(source)); // names differ
    bands.copyData(source);
    EXPECT_EQ(bands, (bands_t{{"red", 660, 10, 0.5}, {"Unknown", 0, 0, 0}}));

    bands_t partial{{"red", 661, 0, 0.5}, {"BLUE", 475, 20, 0.25}};
    EXPECT_TRUE(partial.needsCopyDataFrom(source)); // a width is missing
    partial.copyData(source);
    EXPECT_FALSE(partial.needsCopyDataFrom(source)); // 661 is the band's own
    EXPECT_EQ(partial[0].wavelength, 661);
}

struct ValidCase
{
    bands_t bands;
    bool withoutCheck;
    bool withCheck;
};

TEST(Bands, ValidityWithAndWithoutALookIntoEachBand)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const ValidCase cases[] = {
        {band::makeRGBBands(), true, true},
        {{}, false, false},
        {{{"Red", 660, 40, 1}, {" RED", 660, 40, 1}}, true, false},
        {{{"Garbage"}, {"Garbage"}, {"Red"}}, true, true},
        {{{"", 660, 40, 1}}, true, false},
        {{{"Red", -1, 40, 1}}, true, false},
        {{{"Red", 660, nan, 1}}, true, false},
    };
    for (const ValidCase& test : cases) {
        SCOPED_TRACE(qPrintable(test.bands.names().join(',')));
        QString error;
        EXPECT_EQ(test.bands.valid(error, false, true, false), test.withoutCheck);
        EXPECT_EQ(error.isEmpty(), test.withoutCheck);
        EXPECT_EQ(test.bands.valid(error, true, false, false), test.withCheck);
    }
    QString error;
    EXPECT_TRUE(bands_t().valid(error, true, true, true));
}

} // namespace
} // namespace lumo
