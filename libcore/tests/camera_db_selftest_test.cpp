// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_selftest.h"
#include "test_cameras.h"
#include "test_database.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

/// The findings about cameras alone, as "entry: text", a fault with "!" before it.
QStringList findingsAbout(const std::vector<CameraModelFromDB>& models)
{
    QStringList lines;
    for (const DatabaseFinding& finding : checkInternalDatabase(databaseWith(models))) {
        lines += (finding.fault ? "!" : "") + finding.entry + ": " + finding.text;
    }
    return lines;
}

/// The table of sensor sizes knows an FC6310 with 13.2 x 8.8 mm.
CameraModelFromDB modelOf(const char* name, std::size_t width, std::size_t height, double pixelUm)
{
    CameraModelFromDB model = testModel(name);
    model.params.setImageSize(width, height);
    model.params.pixelSize = pixelUm / 1000.0;
    model.params.setPrincipalPointPixel(
        {static_cast<double>(width) / 2.0, static_cast<double>(height) / 2.0});
    return model;
}

TEST(CameraDbSelftest, TheSensorOfTheTableAndItsCropsAreNoDoubt)
{
    EXPECT_EQ(
        findingsAbout(
            {modelOf("FC6310_8.8_5472x3648", 5472, 3648, 2.4),
             modelOf("FC6310_8.8_3648x5472", 3648, 5472, 2.4),
             modelOf("FC6310_8.8_4864x3648", 4864, 3648, 2.4),
             modelOf("FC6310_8.8_5472x3078", 5472, 3078, 2.4),
             modelOf("FC6310_8.8_2736x1824", 2736, 1824, 4.8),
             modelOf("No such model_8.8_640x512", 640, 512, 12.0)}),
        QStringList());
}

TEST(CameraDbSelftest, AnotherSensorIsADoubtThatNamesTheCameraWhichTheTableKnows)
{
    const CameraModelFromDB small = modelOf("FC6310_9.0_640x512", 640, 512, 12.0);
    EXPECT_EQ(
        findingsAbout({small}),
        QStringList("FC6310_9.0_640x512: its sensor is 41.8 % narrower than in the table of sensor "
                    "sizes"));
    EXPECT_EQ(
        findingsAbout({small, modelOf("FC6310_8.8_5472x3648", 5472, 3648, 2.4)}),
        QStringList("FC6310_9.0_640x512: its sensor is 41.8 % narrower than in the table of sensor "
                    "sizes, which lists another camera of this product: "
                    "'FC6310_8.8_5472x3648'"));
    // One side fits, the other is longer than the sensor.
    EXPECT_EQ(
        findingsAbout({modelOf("FC6310_8.8_5472x4104", 5472, 4104, 2.4)}),
        QStringList("FC6310_8.8_5472x4104: its sensor is 11.9 % higher than in the table of sensor "
                    "sizes"));
}

struct WrongNumber
{
    const char* name;
    void (*spoil)(CameraModelFromDB&);
    const char* fault;
};

class CameraDbSelftestNumbers : public testing::TestWithParam<WrongNumber>
{};

TEST_P(CameraDbSelftestNumbers, ThatCannotBeRightAreAFault)
{
    CameraModelFromDB model = modelOf("FC6310_8.8_5472x3648", 5472, 3648, 2.4);
    GetParam().spoil(model);
    EXPECT_TRUE(findingsAbout({model}).contains(
        QStringLiteral("!FC6310_8.8_5472x3648: ") + GetParam().fault));
}

INSTANTIATE_TEST_SUITE_P(
    All, CameraDbSelftestNumbers,
    testing::Values(
        WrongNumber{
            "pixelInMicrometres", [](auto& model) { model.params.pixelSize = 2.4; },
            "a side of its sensor is 13132.8 mm long"},
        WrongNumber{
            "flatSensor", [](auto& model) { model.params.setImageSize(5472, 100); },
            "a side of its sensor is 0.24 mm long"},
        WrongNumber{
            "principalPoint", [](auto& model) { model.params.principalPointYMm = 8.8; },
            "its principal point lies outside the image"},
        WrongNumber{
            "focalLength", [](auto& model) { model.params.perspective.focalLengthMm = 0.0; },
            "The focal length is not positive"},
        WrongNumber{
            "upwardReadout", [](auto& model) { model.params.lineReadoutTime = -0.5; },
            "its shutter takes 1824 ms from the first line to the last"},
        WrongNumber{
            "bandInMicrometres",
            [](auto& model) {
                model.bandConfigs.push_back({{"LWIR", 11.0, 6.0, 1.0}});
            },
            "its band 'LWIR' lies at 11 nm"}),
    [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace lumo
