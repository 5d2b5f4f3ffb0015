// SPDX-License-Identifier: Apache-2.0
#include "commands/identify_command.h"

#include "input/database.h"
#include "input/image_reading.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/foundation/log.h"
#include "show/camera_text.h"
#include "show/identification_text.h"
#include "show/text_table.h"

#include <QJsonArray>
#include <QJsonObject>

#include <vector>

namespace lumo::program {
namespace {

QString sourceText(const ImageIdentification& found)
{
    return found.source ? text::toString(*found.source) : QStringLiteral("none");
}

/// The EXIF focal length; the model's own if the image has none.
double focalLengthMm(const ExifInfo& exif, const ImageIdentification& found)
{
    return exif.focalLengthMm > 0.0 ? exif.focalLengthMm
                                    : found.camera.params.perspective.focalLengthMm;
}

QJsonObject toJson(const QString& file, const ExifInfo& exif, const ImageIdentification& found)
{
    const ExifID exifId = exif.exifId();
    QJsonObject record;
    record["file"] = file;
    record["make"] = exif.make;
    record["model"] = exif.model;
    record["exifId"] = QJsonArray{exifId.first, exifId.second};
    record["camera"] = found.modelName;
    record["serialNumber"] = exif.serialNumber;
    record["source"] = sourceText(found);
    record["width"] = static_cast<qint64>(found.width);
    record["height"] = static_cast<qint64>(found.height);
    record["nativeWidth"] = static_cast<qint64>(exif.imageWidth);
    record["nativeHeight"] = static_cast<qint64>(exif.imageHeight);
    record["mode"] = toString(found.mode);
    record["pixelSizeUm"] = shownNumber(found.camera.params.pixelSize * kMicrometresPerMillimetre);
    record["pixelSizeSigmaUm"] = shownNumber(found.pixelSizeSigmaMm * kMicrometresPerMillimetre);
    record["pixelSizeFrom"] = toString(found.pixelSizeFrom);
    record["focalLengthMm"] = shownNumber(focalLengthMm(exif, found));
    record["lens"] = text::toString(found.camera.params.lensType);
    record["bands"] = QJsonArray::fromStringList(found.camera.bands.names());
    record["disagreements"] = QJsonArray::fromStringList(found.disagreements);
    return record;
}

QStringList toRow(const QString& file, const ExifInfo& exif, const ImageIdentification& found)
{
    const double pixelSizeUm = found.camera.params.pixelSize * kMicrometresPerMillimetre;
    const double focal = focalLengthMm(exif, found);
    return {
        file,
        exif.make,
        exif.model,
        QStringLiteral("%1x%2").arg(found.width).arg(found.height),
        toString(found.mode),
        focal > 0.0 ? QString::number(focal, 'f', 2) : QString(),
        pixelSizeUm > 0.0 ? QString::number(pixelSizeUm, 'f', 3) : QString(),
        toString(found.pixelSizeFrom),
        sourceText(found),
        found.modelName,
    };
}

} // namespace

ExitCode identify(const QStringList& paths, bool explain, const CommonOptions& options)
{
    CameraModelDb database = openDatabase(options);
    ExitCode exitCode = loadDatabase(database) ? AllDone : SomethingFailed;
    const ImageIdentifier identifier(database);
    std::vector<QStringList> table{
        {"file", "make", "model", "size", "mode", "focal mm", "pixel um", "from", "source",
         "camera"}};
    const auto identifyOne = [&](const QString& file, const ExifInfo& exif) {
        const ImageIdentification found = identifier.identify(exif);
        if (!found.reason.isEmpty()) {
            log::info() << file << found.reason;
        }
        for (const QString& disagreement : found.disagreements) {
            sayRemark(file, disagreement);
        }
        if (options.json) {
            QJsonObject record = toJson(file, exif, found);
            if (explain) {
                record["explain"] = explanationJson(found, identifier.candidates(exif));
            }
            printJsonLine(record);
        } else if (explain) {
            printText(explanationText(file, found, identifier.candidates(exif)));
        } else {
            table.push_back(toRow(file, exif, found));
        }
    };
    const auto fail = [&exitCode, &options](const QString& path, const QString& reason) {
        exitCode = failed(path, reason, options);
    };
    readImages(paths, identifyOne, fail);
    if (table.size() > 1) {
        printText(formatTable(table));
    }
    return exitCode;
}

} // namespace lumo::program
