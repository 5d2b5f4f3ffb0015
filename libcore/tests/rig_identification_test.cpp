// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_identification.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

constexpr const char* kModel = "Multi_5.5_1280x960";

/// An image "<folder>/<name>" of the three-band camera; no band and no capture
/// identifier where they are empty.
InputImage image(const QString& path, const QString& band = {}, const QString& captureId = {})
{
    ExifInfo exif;
    exif.model = "Multi";
    exif.focalLengthMm = 5.5;
    exif.imageWidth = 1280;
    exif.imageHeight = 960;
    exif.captureId = captureId;
    exif.bandsNamed = !band.isEmpty();
    exif.bands = exif.bandsNamed ? bands_t{{band, 0, 0, 1}} : band::makeRGBBands();
    return {path, exif};
}

InputImage at(InputImage image, int second)
{
    ExifInfo exif = image.exif();
    exif.dateTime = QDateTime(QDate(2026, 5, 4), QTime(10, 0, second), Qt::UTC);
    image.setExif(exif);
    return image;
}

QStringList pathsOf(const Capture& capture)
{
    QStringList paths;
    for (const InputImage& each : capture.images) {
        paths.append(each.path());
    }
    return paths;
}

struct GroupCase
{
    const char* name;
    std::vector<InputImage> images;
    std::vector<QStringList> captures;
};

TEST(GroupCaptures, ByIdentifierThenByFolderStemAndTime)
{
    const GroupCase cases[] = {
        {"identifier, whatever the names",
         {image("a/1.tif", "Red", "X"), image("b/2.tif", "NIR", "Y"), image("c/9.tif", "NIR", "X")},
         {{"a/1.tif", "c/9.tif"}, {"b/2.tif"}}},
        {"stem",
         {image("a/I_1_R.tif"), image("a/I_1_N.tif"), image("a/I_2_R.tif")},
         {{"a/I_1_N.tif", "a/I_1_R.tif"}, {"a/I_2_R.tif"}}},
        {"same stem, other folder",
         {image("a/I_1_R.tif"), image("b/I_1_N.tif")},
         {{"a/I_1_R.tif"}, {"b/I_1_N.tif"}}},
        {"same stem, other time",
         {at(image("a/I_1_R.tif"), 1), at(image("a/I_1_N.tif"), 2), at(image("a/I_1_X.tif"), 9)},
         {{"a/I_1_N.tif", "a/I_1_R.tif"}, {"a/I_1_X.tif"}}},
        {"no identifier joins by stem",
         {image("a/I_1_RGB.jpg"), image("a/I_1_N.tif", "NIR", "X")},
         {{"a/I_1_N.tif", "a/I_1_RGB.jpg"}}},
        {"a name without a separator", {image("a/I.tif"), image("a/J")}, {{"a/I.tif"}, {"a/J"}}},
    };
    for (const GroupCase& test : cases) {
        SCOPED_TRACE(test.name);
        std::vector<QStringList> found;
        for (const Capture& capture : groupCaptures(test.images)) {
            found.push_back(pathsOf(capture));
        }
        EXPECT_EQ(found, test.captures);
    }
}

/// A rig of three cameras told apart by band, or by the end of the file name.
RigModel threeBandRig()
{
    rig_filter_t filter(3, "Three", RigCameraDetection::ByDetectionString);
    const char* bands[] = {"Red", "NIR", "Blue"};
    const char* ends[] = {"_R", "_N", "_B"};
    for (std::size_t i = 0; i < 3; ++i) {
        filter.cameras[i] = {kModel, "", ends[i], {{bands[i], 0, 0, 1}}};
    }
    return RigModel::makeRigModel(filter);
}

CameraModelDb databaseWith(const std::vector<RigModel>& rigs)
{
    cameradb::CameraDBData data;
    for (const RigModel& rig : rigs) {
        data.rigs.emplace(rig.name, rig);
    }
    CameraModelDb database;
    database.setInternalData(data);
    return database;
}

struct RigCase
{
    const char* name;
    std::vector<InputImage> images;
    bool fits;
    std::vector<std::size_t> assignment;
    const char* reason;
};

TEST(IdentifyRigs, AssignsEachImageOrSaysWhatDoesNotFit)
{
    RigModel withSerial = threeBandRig();
    withSerial.attr(0)[RigKey::SerialNumber] = "S1";
    InputImage otherBody = image("1_R.tif");
    ExifInfo exif = otherBody.exif();
    exif.serialNumber = "S2";
    otherBody.setExif(exif);
    ExifInfo foreign;
    foreign.model = "Other";

    const RigCase cases[] = {
        {"by band",
         {image("x.tif", "Blue"), image("y.tif", "red"), image("z.tif", "NIR")},
         true,
         {2, 0, 1},
         ""},
        {"by name", {image("1_n.tif"), image("1_B.tif"), image("1_R.tif")}, true, {1, 2, 0}, ""},
        {"one by elimination",
         {image("x.tif", "Blue"), image("y.tif"), image("z.tif", "NIR")},
         true,
         {2, 0, 1},
         ""},
        {"missing",
         {image("x.tif", "Blue"), image("z.tif", "NIR")},
         false,
         {2, 1},
         "Three: no image of Red"},
        {"duplicate",
         {image("a.tif", "Red"), image("b.tif", "Red"), image("c.tif", "NIR")},
         false,
         {0, npos, 1},
         "Three: no image of Blue; a.tif and b.tif are both of Red"},
        {"unknown band",
         {image("a.tif", "Red"), image("b.tif", "SWIR"), image("c.tif", "NIR")},
         false,
         {0, npos, 1},
         "Three: no image of Blue; band SWIR of b.tif is not one of the rig's"},
        {"too many",
         {image("a.tif", "Red"), image("b.tif", "NIR"), image("c.tif", "Blue"), image("d.tif")},
         false,
         {0, 1, 2, npos},
         "Three: a.tif and d.tif are both of Red"},
        {"camera of another rig",
         {image("a.tif", "Red"), image("b.tif", "NIR"), InputImage("c.tif", foreign)},
         false,
         {0, 1, npos},
         "Three: no image of Blue; c.tif is of another camera"},
        {"another body",
         {otherBody, image("1_N.tif"), image("1_B.tif")},
         false,
         {npos, 1, 2},
         "Three: no image of Red; serial number S2 of 1_R.tif is not that of the rig's camera"},
        {"no such camera",
         {InputImage("c.tif", foreign), InputImage("d.tif", foreign)},
         false,
         {npos, npos},
         "no rig has a camera of this kind"},
    };
    // A rig that is not valid is never met, whatever the store holds.
    RigModel invalid = threeBandRig();
    invalid.name = "Invalid";
    invalid.refCameraIndex = 9;
    const CameraModelDb plain = databaseWith({threeBandRig(), invalid});
    const CameraModelDb bodies = databaseWith({withSerial});
    for (const RigCase& test : cases) {
        SCOPED_TRACE(test.name);
        const bool useBodies = QLatin1String(test.name) == QLatin1String("another body");
        const auto results = identifyRigs({{"id", test.images}}, useBodies ? bodies : plain);
        ASSERT_EQ(results.size(), 1u);
        EXPECT_EQ(results[0].fits, test.fits);
        EXPECT_EQ(results[0].assignment, test.assignment);
        EXPECT_EQ(results[0].reasons.join('|'), test.reason);
        EXPECT_EQ(results[0].score >= 0, test.fits);
    }
}

TEST(IdentifyRigs, CamerasToldApartByOrderAreThoseOfTheImagesInOrder)
{
    RigModel inOrder = threeBandRig();
    inOrder.cameraDetection = RigCameraDetection::ByCameraOrder;
    const RigCase cases[] = {
        {"any names", {image("a.tif"), image("b.tif"), image("c.tif")}, true, {0, 1, 2}, ""},
        {"the last missing", {image("a.tif"), image("b.tif")}, true, {0, 1}, ""},
        {"other order",
         {image("a.tif", "NIR"), image("b.tif", "Red")},
         false,
         {npos, npos},
         "Three: a.tif is image 1, but not of Red; b.tif is image 2, but not of NIR"},
        {"too many",
         {image("a.tif"), image("b.tif"), image("c.tif"), image("d.tif")},
         false,
         {0, 1, 2, npos},
         "Three: d.tif is image 4, but the rig has 3 cameras"},
        {"one image", {image("a.tif")}, false, {0}, "Three: no image of NIR, Blue"},
    };
    const CameraModelDb database = databaseWith({inOrder});
    for (const RigCase& test : cases) {
        SCOPED_TRACE(test.name);
        const auto results = identifyRigs({{"id", test.images}}, database);
        EXPECT_EQ(results[0].fits, test.fits);
        EXPECT_EQ(results[0].rigName, "Three");
        EXPECT_EQ(results[0].assignment, test.assignment);
        EXPECT_EQ(results[0].reasons.join('|'), test.reason);
    }
}

TEST(IdentifyRigs, ARepeatedDetectionStringIsTheReason)
{
    RigModel rig = threeBandRig();
    rig.secondaries.pop_back();
    const Capture twice{"id", {image("1_R.tif"), image("2_R.tif")}};
    rig.attr(1) = rig.attr(0);
    EXPECT_EQ(
        identifyRigs({twice}, databaseWith({rig}))[0].reasons,
        QStringList{"Three: two of its cameras have the same detection string"});
    rig.attr(1)[RigKey::DetectionString].clear();
    EXPECT_EQ(
        identifyRigs({twice}, databaseWith({rig}))[0].reasons,
        QStringList{"Three: two images have the same detection string"});
}

TEST(IdentifyRigs, TheNearestRigIsNamedFirst)
{
    RigModel two = threeBandRig();
    two.name = "Two";
    two.secondaries.pop_back();
    const CameraModelDb database = databaseWith({threeBandRig(), two});
    const std::vector<Capture> captures{
        {"a", {image("x.tif", "Red")}}, {"b", {image("x.tif", "Red"), image("y.tif", "NIR")}}};
    const auto results = identifyRigs(captures, database);
    EXPECT_EQ(results[0].rigName, "Two");
    EXPECT_EQ(
        results[0].reasons, (QStringList{"Two: no image of NIR", "Three: no image of NIR, Blue"}));
    EXPECT_TRUE(results[1].fits);
    EXPECT_EQ(results[1].rigName, "Two");
    EXPECT_EQ(results[1].source, CameraSource::InternalDatabase);
}

} // namespace
} // namespace lumo
