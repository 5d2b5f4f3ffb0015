// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/exif/read_exif.h"
#include "shared_images.h"
#include "source_dir.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>

#include <algorithm>

// Images as other programs leave them: scaled, turned or cut, with their metadata
// kept. No pixel is read, so that changing the size in a JPEG's frame header does.
namespace lumo {
namespace {

/// Position of the frame header's height; 0 if there is none.
int frameHeight(const QByteArray& jpeg)
{
    int at = 2;
    while (at + 9 < jpeg.size() && static_cast<unsigned char>(jpeg[at]) == 0xff) {
        const auto type = static_cast<unsigned char>(jpeg[at + 1]);
        if (type >= 0xc0 && type <= 0xc3) {
            return at + 5;
        }
        at += 2 + qFromBigEndian<quint16>(jpeg.constData() + at + 2);
    }
    return 0;
}

struct Change
{
    const char* name;
    std::size_t width;
    std::size_t height;
    ImageMode mode;
    double scale; ///< of the pixel size
};

std::vector<Change> changesOf(std::size_t width, std::size_t height)
{
    std::vector<Change> changes{
        {"half", width / 2, height / 2, ImageMode::Resized, 2.0},
        {"turned", height, width, ImageMode::Native, 1.0}};
    const std::size_t longSide = std::max(width, height);
    const std::size_t shortSide = std::min(width, height);
    if (3 * longSide > 4 * shortSide + 4) {
        const std::size_t cut = shortSide / 3 * 4;
        changes.push_back(
            {"cut to 4:3", width > height ? cut : shortSide, width > height ? shortSide : cut,
             ImageMode::Cropped, 1.0});
    }
    return changes;
}

class ChangedImages : public testing::Test
{
protected:
    ChangedImages()
    {
        cameradb::CameraDBData shipped;
        QString error;
        EXPECT_TRUE(cameradb::loadTextDB(cameradb::shippedTextDBPath(), shipped, error))
            << qPrintable(error);
        m_database.setInternalData(shipped);
    }

    ImageIdentification identify(const QString& path)
    {
        ExifInfo exif;
        QString error;
        EXPECT_TRUE(exif::readExif(path, exif, error)) << qPrintable(error);
        return identifyImage(exif, m_database);
    }

    ImageIdentification identifyChanged(QByteArray jpeg, const Change& change)
    {
        const int at = frameHeight(jpeg);
        qToBigEndian(static_cast<quint16>(change.height), jpeg.data() + at);
        qToBigEndian(static_cast<quint16>(change.width), jpeg.data() + at + 2);
        QFile file(m_folder.filePath("changed.jpg"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(jpeg) == jpeg.size());
        file.close();
        return identify(file.fileName());
    }

    /// How many of the changes were recognised; the others must be said.
    int check(const QString& path, int& changes)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray jpeg = file.readAll();
        const ImageIdentification original = identify(path);
        const double pixelSize = original.camera.params.pixelSize;
        int recognised = 0;
        constexpr std::size_t kWhole = 200; // smaller ones stand in for a picture
        if (frameHeight(jpeg) == 0 || pixelSize == 0 || original.mode != ImageMode::Native ||
            original.height < kWhole) {
            return recognised;
        }
        for (const Change& change : changesOf(original.width, original.height)) {
            SCOPED_TRACE(path.toStdString() + ' ' + change.name);
            ++changes;
            const ImageIdentification found = identifyChanged(jpeg, change);
            const double expected = pixelSize * change.scale;
            EXPECT_TRUE(found.mode == change.mode || found.mode == ImageMode::Unknown)
                << qPrintable(toString(found.mode) + ' ' + found.modeReason);
            recognised += found.mode == change.mode ? 1 : 0;
            if (found.mode == change.mode || found.camera.params.pixelSize > 0) {
                EXPECT_NEAR(found.camera.params.pixelSize, expected, 0.02 * expected);
            }
        }
        return recognised;
    }

    CameraModelDb m_database;
    QTemporaryDir m_folder;
};

TEST_F(ChangedImages, OfTheSamplesAreRecognised)
{
    int changes = 0;
    int recognised = 0;
    for (const char* name : {"drone_fc6310.jpg", "compact_portrait.jpg", "no_sensor_known.jpg"}) {
        recognised += check(sourcePath("samples/images/") + name, changes);
    }
    EXPECT_EQ(changes, 7);
    EXPECT_EQ(recognised, changes);
}

TEST_F(ChangedImages, OfRealCamerasAreRecognisedOrSaidToBeUnknown)
{
    const QDir folder = sharedImages();
    if (!folder.exists()) {
        GTEST_SKIP() << "no folder " << qPrintable(folder.path());
    }
    int changes = 0;
    int recognised = 0;
    for (const QString& name : folder.entryList({"*.jpg"}, QDir::Files)) {
        recognised += check(folder.filePath(name), changes);
    }
    RecordProperty("recognised", recognised);
    EXPECT_GT(changes, 60);
    EXPECT_GT(recognised, changes * 9 / 10);
}

} // namespace
} // namespace lumo
