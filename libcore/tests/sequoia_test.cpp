// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/foundation/log.h"
#include "test_cameras.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace lumo {
namespace {

const QStringList kRgb = {"Red", "Green", "Blue"};

InputImage image(
    const QString& path, const QStringList& bands, const QString& serialNumber = "S1",
    const QString& model = "Sequoia")
{
    ExifInfo exif;
    exif.make = model == "Sequoia" ? "Parrot" : "Maker";
    exif.model = model;
    exif.serialNumber = serialNumber;
    for (const QString& band : bands) {
        exif.bands.append({band});
    }
    return InputImage(path, exif);
}

InputImage colour(const QString& path, const QString& serialNumber = "S1")
{
    return image(path, kRgb, serialNumber);
}

InputImage green(const QString& path, const QString& serialNumber = "S1")
{
    return image(path, {"Green"}, serialNumber);
}

InputImage other(const QStringList& bands)
{
    return image("other.jpg", bands, "S9", "Model");
}

TEST(Sequoia, IsKnownByTheCamerasName)
{
    for (const auto& [name, expected] : std::initializer_list<std::pair<const char*, bool>>{
             {"Sequoia_4.0_1280x960", true},
             {"sequoia_4.0", false},
             {"Sequoia", false},
             {"My Sequoia_4.0", false}}) {
        CameraData camera;
        camera.params.name = name;
        EXPECT_EQ(isSequoia(camera), expected) << name;
    }
}

TEST(Sequoia, MissingIrradianceIsSaidOfSequoiaImagesOnly)
{
    ExifInfo exif = green("a.tif").exif();
    EXPECT_TRUE(isSequoiaWithMissingIrradiance(exif));
    exif.irradiance = {0.0};
    EXPECT_FALSE(isSequoiaWithMissingIrradiance(exif));
    EXPECT_FALSE(isSequoiaWithMissingIrradiance(other(kRgb).exif()));
}

TEST(Sequoia, SetsAreMixedOrMultispectral)
{
    const InputImage rgb = colour("a.jpg");
    const InputImage band = green("a.tif");
    const InputImage otherBand = other({"Green"});
    const struct
    {
        std::vector<InputImage> images;
        bool mixed;
        bool onlyMultispectral;
    } cases[] = {
        {{}, false, true},
        {{rgb, rgb}, false, false},
        {{rgb, band}, true, false},
        {{band, otherBand, rgb}, true, false},
        {{band, band}, false, true},
        {{rgb, otherBand}, false, false},
        {{band, otherBand}, false, false},
        {{band, other(kRgb)}, false, false},
    };
    int row = 0;
    for (const auto& [images, mixed, onlyMultispectral] : cases) {
        EXPECT_EQ(hasMixedSequoiaImages(images), mixed) << row;
        EXPECT_EQ(hasOnlySequoiaMSP(images), onlyMultispectral) << row;
        ++row;
    }
}

TEST(Sequoia, ColourImagesAreRemovedByTheExactNamesOfTheirBands)
{
    const InputImage turned = image("b", {"Blue", "Green", "Red"});
    const InputImage lower = image("c", {"red", "green", "blue"});
    const InputImage four = image("d", {"Red", "Green", "Blue", "NIR"});
    std::vector<InputImage> images = {colour("a"), turned,     lower,      other(kRgb),
                                      four,        green("e"), colour("f")};
    EXPECT_EQ(removeSequoiaRgbImages(images), 3u);
    EXPECT_EQ(images, (std::vector<InputImage>{turned, lower, four, green("e")}));
}

TEST(Sequoia, ImagesAreGroupedByDevice)
{
    const log::Capture log;
    const auto devices = sequoiaProjectInfo(
        {green("/p/b/1.tif", "S1"), other(kRgb), colour("/p/a/2.jpg", "S2"),
         colour("/p/a/3.jpg", "S1"), green("/p/b/4.tif", "S1"), green("/p/c/5.tif", ""),
         green("/p/c/6.tif", "S2")});
    const std::unordered_map<QString, ProjectInfoForSequoiaDevice> expected = {
        {"S1", {1, {"/p/b", "/p/a"}}}, {"S2", {0, {"/p/a", "/p/c"}}}};
    EXPECT_EQ(devices, expected);
    ASSERT_EQ(log.records().size(), 1u);
    EXPECT_EQ(log.records()[0].source, "sequoia");
    EXPECT_EQ(log.records()[0].text, "Incorrect Exif for /p/c/5.tif: No serial number");

    using Serials = std::vector<QString>;
    EXPECT_EQ(sequoiaSerialNumbersWithMissingCalibrationFile(devices, {}), Serials{"S1"});
    EXPECT_EQ(sequoiaSerialNumbersWithMissingCalibrationFile(devices, {{"S2", ""}}), Serials{"S1"});
    EXPECT_EQ(sequoiaSerialNumbersWithMissingCalibrationFile(devices, {{"S1", ""}}), Serials{});
}

TEST(Sequoia, TheFirstCalibrationFileOfTheDeviceItselfIsFound)
{
    const QTemporaryDir root;
    const auto folder = [&root](const char* name, const QByteArray& calibration) {
        EXPECT_TRUE(QDir(root.path()).mkpath(name));
        QFile file(root.filePath(name) + "/sequoia_therm.dat");
        if (!calibration.isEmpty()) {
            EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(calibration) > 0);
        }
        return root.filePath(name);
    };
    const QString empty = folder("empty", "");
    const QString one = folder("one", "serial: S1\n");
    const QString again = folder("again", "serial: S1\n");
    const QString two = folder("two", "serial: S2\n");
    const QString broken = folder("broken", "no number here\n");
    const auto files = autodetectSequoiaFactoryCalibrationFiles({
        {"S1", {1, {empty, two, broken, again, one}}},
        {"S2", {0, {one, two}}},
        {"S3", {1, {one, two, broken}}},
    });
    const std::unordered_map<QString, QString> expected = {
        {"S1", again + "/sequoia_therm.dat"}, {"S2", two + "/sequoia_therm.dat"}};
    EXPECT_EQ(files, expected);
}

TEST(Sequoia, OnlySizesOf970RowsAreCut)
{
    for (const std::size_t height : {960u, 969u, 970u, 971u}) {
        SCOPED_TRACE(height);
        const std::size_t cut = height == 970 ? 960 : height;
        CameraData camera;
        camera.params.setImageSize(1280, height);
        sequoia::fixImageDimensionsToRemoveDebugLines(camera);
        EXPECT_EQ(camera.params.imageWidth, 1280u);
        EXPECT_EQ(camera.params.imageHeight, cut);

        ExifInfo exif = green("").exif();
        exif.imageHeight = exif.fileHeight = height;
        InputImage input("", exif);
        sequoia::fixImageDimensionsToRemoveDebugLines(input);
        exif.imageHeight = cut;
        EXPECT_EQ(input.exif(), exif);

        const box region = sequoia::rectWithoutDebugLines({1280, height, 1, DataType::UInt16});
        const auto& [low, high] = std::pair(region.min_corner(), region.max_corner());
        EXPECT_EQ(
            (std::array{low.x(), low.y(), high.x(), high.y()}),
            height == 970 ? (std::array{0, 8, 1280, 968}) : (std::array{0, 0, 0, 0}));

        const auto rows = static_cast<Eigen::Index>(height);
        Eigen::MatrixXf pixels =
            Eigen::VectorXf::LinSpaced(rows, 0, float(rows - 1)) * Eigen::RowVectorXf::Ones(1280);
        const Eigen::MatrixXf expected =
            height == 970 ? Eigen::MatrixXf(pixels.block(8, 0, 960, 1280)) : pixels;
        sequoia::removeDebugLines(pixels);
        EXPECT_EQ(pixels, expected);
    }
}

TEST(Sequoia, ARawImageIsIdentifiedByItsPicture)
{
    CameraModelFromDB model = testModel("Sequoia_4.0_1280x960");
    model.params.setImageSize(1280, 960);
    cameradb::CameraDBData data;
    data.cameras.emplace(model.params.name, model);
    CameraModelDb db;
    db.setInternalData(data);

    ExifInfo exif = green("").exif();
    exif.focalLengthMm = 3.98;
    exif.imageWidth = exif.fileWidth = 1280;
    for (const auto& [recorded, inFile] :
         std::initializer_list<std::pair<std::size_t, std::size_t>>{
             {970, 970}, {970, 960}, {970, 0}, {960, 960}}) {
        SCOPED_TRACE(testing::Message() << recorded << ' ' << inFile);
        exif.imageHeight = recorded;
        exif.fileHeight = inFile;
        const ImageIdentification found = identifyImage(exif, db);
        EXPECT_EQ(found.modelName, model.params.name);
        EXPECT_EQ(found.height, 960u);
        EXPECT_EQ(found.camera.params.imageHeight, 960u);
        EXPECT_EQ(found.camera.params.pixelSize, model.params.pixelSize);
    }
    exif.imageHeight = exif.fileHeight = 970;
    exif.bands = band::makeRGBBands();
    EXPECT_EQ(identifyImage(exif, db).height, 970u);
}

} // namespace
} // namespace lumo
