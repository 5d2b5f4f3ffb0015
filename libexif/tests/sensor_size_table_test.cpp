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
