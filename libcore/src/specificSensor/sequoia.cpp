// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/specificSensor/sequoia.h"

#include "lumo/exif/read_exif.h"
#include "lumo/exif/sequoia.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"

#include <algorithm>

namespace lumo {
namespace {

bool hasThreeBands(const InputImage& image)
{
    return image.bands().size() == 3;
}

bool isColour(const InputImage& image)
{
    return image.bands().names() == QStringList{"Red", "Green", "Blue"};
}

/// The first calibration file in the folders that is the device's own; empty if
/// there is none.
QString findCalibrationFile(const QString& serialNumber, const std::vector<QString>& directories)
{
    for (const QString& directory : directories) {
        const QString path = file::join(directory, QStringLiteral("sequoia_therm.dat"));
        if (file::exists(path) && exif::getSerialNumber(path) == serialNumber) {
            return path;
        }
    }
    return {};
}

} // namespace

bool isSequoia(const CameraData& c)
{
    return c.params.name.startsWith(QLatin1String("Sequoia_"));
}

bool isSequoiaWithMissingIrradiance(const ExifInfo& e)
{
    return exif::sequoia::isSequoia(e) && e.irradiance.empty();
}

bool hasMixedSequoiaImages(const std::vector<InputImage>& images)
{
    bool threeBands = false;
    bool others = false;
    for (const InputImage& image : images) {
        if (exif::sequoia::isSequoia(image.exif())) {
            (hasThreeBands(image) ? threeBands : others) = true;
        }
    }
    return threeBands && others;
}

bool hasOnlySequoiaMSP(const std::vector<InputImage>& images)
{
    return std::all_of(images.begin(), images.end(), [](const InputImage& image) {
        return exif::sequoia::isSequoia(image.exif()) &&
               image.spectralKind() == SpectralKind::Multispectral;
    });
}

std::size_t removeSequoiaRgbImages(std::vector<InputImage>& images)
{
    return std::erase_if(images, isColour);
}

std::unordered_map<QString, ProjectInfoForSequoiaDevice> sequoiaProjectInfo(
    const std::vector<InputImage>& images)
{
    std::unordered_map<QString, ProjectInfoForSequoiaDevice> devices;
    for (const InputImage& image : images) {
        if (!exif::sequoia::isSequoia(image.exif())) {
            continue;
        }
        if (image.serialNumber().isEmpty()) {
            log::warning() << QStringLiteral("Incorrect Exif for ") + image.path() +
                                  QStringLiteral(": No serial number");
            continue;
        }
        const auto [entry, isNew] = devices.try_emplace(image.serialNumber());
        ProjectInfoForSequoiaDevice& device = entry->second;
        if (isNew) {
            device.deviceKind = static_cast<std::int32_t>(image.spectralKind());
        }
        const QString directory = file::dirname(image.path());
        std::vector<QString>& known = device.imageDirectories;
        if (std::find(known.begin(), known.end(), directory) == known.end()) {
            known.push_back(directory);
        }
    }
    return devices;
}

std::vector<QString> sequoiaSerialNumbersWithMissingCalibrationFile(
    const std::unordered_map<QString, ProjectInfoForSequoiaDevice>& devices,
    const std::unordered_map<QString, QString>& calibrationFiles)
{
    constexpr auto kNeedsCalibration = static_cast<std::int32_t>(SpectralKind::Multispectral);
    std::vector<QString> missing;
    for (const auto& [serialNumber, device] : devices) {
        if (device.deviceKind == kNeedsCalibration && !calibrationFiles.contains(serialNumber)) {
            missing.push_back(serialNumber);
        }
    }
    return missing;
}

std::unordered_map<QString, QString> autodetectSequoiaFactoryCalibrationFiles(
    const std::unordered_map<QString, ProjectInfoForSequoiaDevice>& devices)
{
    std::unordered_map<QString, QString> files;
    for (const auto& [serialNumber, device] : devices) {
        const QString path = findCalibrationFile(serialNumber, device.imageDirectories);
        if (!path.isEmpty()) {
            files.emplace(serialNumber, path);
        }
    }
    return files;
}

namespace sequoia {

void fixImageDimensionsToRemoveDebugLines(CameraData& c)
{
    if (c.params.imageHeight == kRawHeight) {
        c.params.setImageSize(c.params.imageWidth, kUsableHeight);
    }
}

void fixImageDimensionsToRemoveDebugLines(InputImage& img)
{
    if (img.exif().imageHeight == kRawHeight) {
        ExifInfo exif = img.exif();
        exif.imageHeight = kUsableHeight;
        img.setExif(exif);
    }
}

box rectWithoutDebugLines(const ImageInfo& info)
{
    if (info.height != kRawHeight) {
        return {{0, 0}, {0, 0}};
    }
    return {
        {0, kFirstUsableRow},
        {static_cast<int>(info.width), kFirstUsableRow + kUsableHeight},
    };
}

void removeDebugLines(Eigen::MatrixXf& image)
{
    if (image.rows() == kRawHeight) {
        image = image.middleRows(kFirstUsableRow, kUsableHeight).eval();
    }
}

} // namespace sequoia
} // namespace lumo
