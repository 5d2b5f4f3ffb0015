// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_from_captures.h"
#include "lumo/core/cameraInfo/rig_identification.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

/// An image of camera `index` of a rig whose camera 1 is the reference; its band
/// is named unless it is empty.
InputImage image(const QString& path, const QString& captureId, int index, const QString& band)
{
    ExifInfo exif;
    exif.model = "Multi";
    exif.focalLengthMm = 5.5;
    exif.imageWidth = 1280;
    exif.imageHeight = 960;
    exif.serialNumber = "S1";
    exif.captureId = captureId;
    if (!band.isEmpty()) {
        exif.bandsNamed = true;
        exif.bands = {{band, 500.0 + index, 20, 1}};
        exif.rigCameraIndex = index;
        exif.rigReferenceIndex = 1;
    }
    if (index != 1) {
        exif.rigRelatives = std::array{0.1 * index, -0.2, 0.3};
    }
    return {path, exif};
}

std::vector<Capture> flight(const QStringList& bands)
{
    std::vector<InputImage> images;
    for (const QString& capture : {QString("A"), QString("B")}) {
        for (int i = 0; i < bands.size(); ++i) {
            const QString path = QString("f/%1_%2.tif").arg(capture).arg(i);
            images.push_back(image(path, capture, i, bands[i]));
        }
    }
    return groupCaptures(images);
}

TEST(RigFromCaptures, HoldsTheImagesOwnPosesAndFitsThem)
{
    const std::vector<Capture> captures = flight({"Blue", "Green", "Red"});
    CameraModelDb database;
    RigModel rig;
    QString error;
    ASSERT_TRUE(makeRigFromCaptures(captures, database, "Mine", rig, error)) << qPrintable(error);
    EXPECT_EQ(rig.name, "Mine");
    EXPECT_EQ(rig.refCameraIndex, 1u);
    EXPECT_EQ(rig.attr(2).name, "Red");
    EXPECT_EQ(rig.attr(2)[RigKey::SerialNumber], "S1");
    EXPECT_EQ(rig.secondaries[1].relatives.rotX, 0.2);
    EXPECT_EQ(rig.secondaries[1].relatives.rotZ, 0.3);

    ASSERT_TRUE(database.setRigModel(rig, false));
    for (const RigIdentification& found : identifyRigs(captures, database)) {
        EXPECT_TRUE(found.fits);
        EXPECT_TRUE(found.serialMatched);
        EXPECT_EQ(found.assignment, (std::vector<std::size_t>{0, 1, 2}));
    }
}

TEST(RigFromCaptures, FileNamesTellCamerasWithoutBandsApart)
{
    CameraModelDb database;
    RigModel rig;
    QString error;
    ASSERT_TRUE(makeRigFromCaptures(flight({"", ""}), database, "Mine", rig, error))
        << qPrintable(error);
    EXPECT_EQ(rig.attr(0)[RigKey::DetectionString], "_0");
    EXPECT_EQ(rig.attr(1)[RigKey::DetectionString], "_1");
}

TEST(RigFromCaptures, RefusesWhatMakesNoRig)
{
    std::vector<Capture> mixed = flight({"Blue", "Green"});
    mixed[1] = flight({"Blue", "SWIR"})[1];
    const std::vector<Capture> otherCase =
        groupCaptures({image("f/a_n.jpg", "", 0, ""), image("f/a_N.jpg", "", 1, "")});
    InputImage body = image("f/a_1.jpeg", "", 1, "");
    ExifInfo exif = body.exif();
    exif.serialNumber = "S2";
    body.setExif(exif);
    const std::vector<Capture> otherBody = groupCaptures({image("f/a_1.jpg", "", 0, ""), body});
    const std::pair<std::vector<Capture>, const char*> cases[] = {
        {{}, "no capture has two images or more"},
        {flight({"Blue"}), "no capture has two images or more"},
        {flight({"Blue", "Blue"}), "two cameras of capture 'A' cannot be distinguished"},
        {mixed, "captures 'A' and 'B' are not of one rig"},
        {otherCase, "two cameras of capture 'f/a' cannot be distinguished"},
        {otherBody, "two cameras of capture 'f/a' cannot be distinguished"},
    };
    for (const auto& [captures, reason] : cases) {
        RigModel rig;
        QString error;
        EXPECT_FALSE(makeRigFromCaptures(captures, CameraModelDb(), "Mine", rig, error));
        EXPECT_EQ(error, reason);
        EXPECT_TRUE(rig.name.isEmpty());
    }
    RigModel rig;
    QString error;
    EXPECT_FALSE(makeRigFromCaptures(flight({"A", "B"}), CameraModelDb(), "", rig, error));
}

} // namespace
} // namespace lumo
