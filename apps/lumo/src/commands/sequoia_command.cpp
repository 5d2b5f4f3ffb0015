// SPDX-License-Identifier: Apache-2.0
#include "commands/sequoia_command.h"

#include "input/image_reading.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/specificSensor/sequoia.h"
#include "lumo/core/specificSensor/sequoia_file.h"
#include "lumo/exif/sequoia.h"
#include "lumo/foundation/file.h"
#include "show/text_table.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <map>
#include <vector>

namespace lumo::program {
namespace {

/// The images' data about one device.
struct Device
{
    ProjectInfoForSequoiaDevice info;
    QString calibrationFile; ///< empty if there is none
    bool calibrationMissing = false;
    std::vector<InputImage> images;

    [[nodiscard]] qint64 imagesOf(SpectralKind kind) const
    {
        return std::count_if(images.begin(), images.end(), [kind](const InputImage& image) {
            return image.spectralKind() == kind;
        });
    }
    [[nodiscard]] qint64 missingIrradiance() const
    {
        return std::count_if(images.begin(), images.end(), [](const InputImage& image) {
            return isSequoiaWithMissingIrradiance(image.exif());
        });
    }
};
using Devices = std::map<QString, Device>; ///< by serial number

QString kindText(const Device& device)
{
    return device.info.deviceKind == static_cast<int>(SpectralKind::Multispectral)
               ? QStringLiteral("multispectral")
               : QStringLiteral("rgb");
}

Devices findDevices(const std::vector<InputImage>& images)
{
    const auto infos = sequoiaProjectInfo(images);
    const auto calibrationFiles = autodetectSequoiaFactoryCalibrationFiles(infos);
    Devices devices;
    for (const auto& [serialNumber, info] : infos) {
        devices[serialNumber].info = info;
    }
    for (const auto& [serialNumber, path] : calibrationFiles) {
        devices[serialNumber].calibrationFile = path;
    }
    for (const QString& serialNumber :
         sequoiaSerialNumbersWithMissingCalibrationFile(infos, calibrationFiles)) {
        devices[serialNumber].calibrationMissing = true;
    }
    for (const InputImage& image : images) {
        const auto device = devices.find(image.serialNumber());
        if (device != devices.end()) {
            device->second.images.push_back(image);
        }
    }
    return devices;
}

QJsonObject toJson(const QString& serialNumber, const Device& device)
{
    QJsonArray directories;
    for (const QString& directory : device.info.imageDirectories) {
        directories.append(directory);
    }
    QJsonObject record;
    record["serialNumber"] = serialNumber;
    record["kind"] = kindText(device);
    record["directories"] = directories;
    record["images"] = QJsonObject{
        {"multispectral", device.imagesOf(SpectralKind::Multispectral)},
        {"rgb", device.imagesOf(SpectralKind::Rgb)}};
    record["mixed"] = hasMixedSequoiaImages(device.images);
    record["missingIrradiance"] = device.missingIrradiance();
    record["calibrationFile"] = device.calibrationFile;
    record["calibrationMissing"] = device.calibrationMissing;
    return record;
}

QString calibrationText(const Device& device)
{
    return device.calibrationMissing ? QStringLiteral("missing") : device.calibrationFile;
}

/// One row for each directory; only the first row of a device names the device.
QString table(const Devices& devices)
{
    std::vector<QStringList> rows{
        {"serial number", "kind", "multispectral", "rgb", "no irradiance", "calibration file",
         "directory"}};
    for (const auto& [serialNumber, device] : devices) {
        QStringList cells{
            serialNumber,
            kindText(device),
            QString::number(device.imagesOf(SpectralKind::Multispectral)),
            QString::number(device.imagesOf(SpectralKind::Rgb)),
            QString::number(device.missingIrradiance()),
            calibrationText(device)};
        for (const QString& directory : device.info.imageDirectories) {
            rows.push_back(cells + QStringList{directory});
            std::fill(cells.begin(), cells.end(), QStringLiteral(" "));
        }
    }
    return formatTable(rows);
}

void print(const std::vector<InputImage>& images, std::size_t others, const Devices& devices)
{
    if (!devices.empty()) {
        printText(table(devices));
    }
    if (hasMixedSequoiaImages(images)) {
        printText(QStringLiteral("Mixed: colour and single-band images of a Sequoia\n"));
    }
    if (others > 0) {
        printText(QStringLiteral("Images of other cameras: %1\n").arg(others));
    }
}

bool hasDebugLines(const InputImage& image)
{
    return image.spectralKind() == SpectralKind::Multispectral &&
           image.exif().fileHeight == sequoia::kRawHeight;
}

/// Writes a cut copy of each raw image. Prints failures and goes on with the rest.
ExitCode writeCutCopies(
    const std::vector<InputImage>& images, const QString& folder, const CommonOptions& options)
{
    ExitCode exitCode = AllDone;
    unsigned long long written = 0;
    unsigned long long seen = 0;
    for (const InputImage& image : images) {
        serviceProgress().setProgress(
            seen++, images.size(), QStringLiteral("Removing debug lines"));
        if (!hasDebugLines(image)) {
            continue;
        }
        if (serviceProgress().shouldStop()) {
            return failed(image.path(), QStringLiteral("stopped before this file"));
        }
        // The folder is made here, so that a run without raw images leaves none behind.
        const QString target = file::join(folder, file::filename(image.path()));
        QString error;
        if (!file::mkdir(folder)) {
            return failed(folder, QStringLiteral("the folder cannot be made"));
        }
        QJsonObject record{{"file", image.path()}};
        if (sequoia::writeWithoutDebugLines(image.path(), target, error)) {
            record["output"] = target;
            ++written;
        } else {
            record["error"] = error;
            exitCode = failed(image.path(), error);
        }
        if (options.json) {
            printJsonLine(record);
        }
    }
    if (!options.json) {
        printText(
            QStringLiteral("Copies without debug lines in %1: %2\n").arg(folder).arg(written));
    }
    return exitCode;
}

} // namespace

ExitCode showSequoia(
    const QStringList& paths, const QString& cutFolder, const CommonOptions& options)
{
    ExitCode exitCode = AllDone;
    std::vector<InputImage> images;
    std::size_t others = 0;
    const auto fail = [&exitCode, &options](const QString& path, const QString& reason) {
        exitCode = failed(path, reason, options);
    };
    const auto take = [&](const QString& file, const ExifInfo& exif) {
        if (!exif::sequoia::isSequoia(exif)) {
            ++others;
            return;
        }
        images.emplace_back(file, exif);
        if (exif.serialNumber.isEmpty()) {
            fail(file, QStringLiteral("no serial number, so the image belongs to no device"));
        }
    };
    readImages(paths, take, fail);
    const Devices devices = findDevices(images);
    if (options.json) {
        for (const auto& [serialNumber, device] : devices) {
            printJsonLine(toJson(serialNumber, device));
        }
    } else {
        print(images, others, devices);
    }
    if (!cutFolder.isEmpty() && writeCutCopies(images, cutFolder, options) != AllDone) {
        exitCode = SomethingFailed;
    }
    return exitCode;
}

} // namespace lumo::program
