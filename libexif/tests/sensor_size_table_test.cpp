// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/sensor_size_table.h"
#include "sensor_size_rows.h"

#include <gtest/gtest.h>

namespace lumo::exif {
namespace {

TEST(SensorSizeTable, TheShippedTableIsReadWhole)
{
    SensorSizes sizes;
    QString error;
    ASSERT_TRUE(parseSensorSizes(shippedSensorSizes(), sizes, error)) << qPrintable(error);
    EXPECT_GT(sizes.size(), 7000);
}

TEST(SensorSizeTable, SpellingsOfMakerAndModelAreFolded)
{
    struct Case
    {
        const char* make;
        const char* model;
        double widthMm; ///< 0: not in the table
    };
    const Case cases[] = {
        {"Canon", "Canon PowerShot G9", 7.44},
        {"canon", "PowerShot-G9 ", 7.44},
        {"", "Canon PowerShot G9", 7.44},
        {"NIKON CORPORATION", "NIKON D90", 23.6},
        {"Nikon", "D90", 23.6},
        {"DJI", "FC6360", 4.8},
        {"SONY", "DSC-RX100", 13.2},
        {"Canon", "Canon EOS-1D Mark III", 28.1}, // 28.7 in most lists
        {"FUJIFILM", "X-T2", 23.6},
        {"DJI", "XT2", 0.0}, // a thermal camera and one of colour
        {"MicaSense", "RedEdge-P", 0.0},
        {"Canon", "", 0.0},
        {"", "", 0.0},
        {"Nobody", "PowerShot G9", 0.0}};
    for (const Case& c : cases) {
        const auto size = findSensorSize(QLatin1String(c.make), QLatin1String(c.model));
        EXPECT_NEAR(size ? size->widthMm : 0.0, c.widthMm, 0.02 * c.widthMm)
            << c.make << '/' << c.model;
    }
}

TEST(SensorSizeTable, VariantsOfAPhoneForCountriesAndCarriersAreFolded)
{
    struct Case
    {
        const char* make;
        const char* model;
        double widthMm; ///< 0: not in the table
    };
    const Case cases[] = {
        {"samsung", "SAMSUNG-SM-N900A", 4.69}, // of SM-N9005
        {"samsung", "SM-N900", 4.69},
        {"samsung", "SM-G920F", 5.95}, // an entry of its own
        {"samsung", "SAMSUNG-SM-G920A", 5.95},
        {"samsung", "SM-A536E/DS", 7.42},
        {"samsung", "SM-N910V", 5.95}, // of "Galaxy Note 4 SM-N910C"
        {"SAMSUNG", "GT-I9300T", 4.53},
        {"SAMSUNG", "GT-I9301", 0.0}, // another phone
        {"samsung", "SM-G935L", 0.0},
        {"samsung", "SM-N90", 0.0},
        {"HUAWEI", "VOG-L09", 7.12}, // of VOG-L29
        {"HUAWEI", "VOG-AL10", 7.12},
        {"HUAWEI", "ELE-L29", 0.0},
        {"LG Electronics", "LG-H815T", 5.95},
        {"LGE", "LM-G820", 5.64},
        {"Canon", "SM-N900A", 0.0}};
    for (const Case& c : cases) {
        const auto size = findSensorSize(QLatin1String(c.make), QLatin1String(c.model));
        EXPECT_NEAR(size ? size->widthMm : 0.0, c.widthMm, 0.005) << c.make << '/' << c.model;
    }
    const auto ofUnknownMaker = findSensorSize(QStringLiteral("SM-N900V"));
    ASSERT_TRUE(ofUnknownMaker);
    EXPECT_EQ(ofUnknownMaker->widthMm, 4.69);
}

TEST(SensorSizeTable, VariantsThatContradictAnswerForThemselvesAlone)
{
    SensorSizes sizes;
    QString error;
    const QByteArray text = "Samsung\tSM-G970F\t5.65\t\nSamsung\tSM-G970U1\t4.6\t\n"
                            "Samsung\tSM-G970N\t5.65\t\nSamsung\tSM-G960F\t5.65\t\n";
    ASSERT_TRUE(parseSensorSizes(text, sizes, error)) << qPrintable(error);
    int unknown = 0;
    int known = 0;
    for (const SensorSize& size : sizes) {
        ++(size == SensorSize() ? unknown : known);
    }
    EXPECT_EQ(unknown, 1); // SM-G970
    EXPECT_EQ(known, 5);   // the four names, and SM-G960
}

TEST(SensorSizeTable, ABadLineIsNamed)
{
    const char* const lines[] = {
        "Canon\tG9\t7.44",         "Canon\tG9\t7.44\t5.57\t1", "\tG9\t7.44\t5.57",
        "Canon\t-\t7.44\t5.57",    "Canon\tG9\t\t5.57",        "Canon\tG9\t7,44\t5.57",
        "Canon\tG9\t-7.44\t",      "Canon\tG9\tnan\t",         "Canon\tG9\t7.44\t7.45",
        "Canon\tG9\t700.0\t500.0", "Canon\tG9\t7.44\tx"};
    for (const char* line : lines) {
        SensorSizes sizes;
        QString error;
        EXPECT_FALSE(parseSensorSizes(QByteArray("# comment\n\n") + line, sizes, error)) << line;
        EXPECT_TRUE(error.startsWith(QStringLiteral("line 3: "))) << qPrintable(error);
    }
}

} // namespace
} // namespace lumo::exif
