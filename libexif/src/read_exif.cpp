// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/read_exif.h"

#include "calibration_serial_number.h"
#include "exif_record.h"
#include "exiv2_reader.h"
#include "image_bands.h"
#include "jpeg_frame.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/log.h"
#include "serial_number.h"

#include <QFile>
#include <QFileInfo>

namespace lumo::exif {
namespace {

bool openFile(QFile& file, QString& error)
{
    const QFileInfo info(file.fileName());
    if (!info.exists()) {
        error = QStringLiteral("no such file");
        return false;
    }
    // Reading from a pipe or device might never end.
    if (!info.isFile()) {
        error = info.isDir() ? QStringLiteral("is a folder") : QStringLiteral("is not a file");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString().simplified();
        return false;
    }
    if (file.size() == 0) {
        error = QStringLiteral("the file is empty");
        return false;
    }
    return true;
}

XmpProperties readXmp(const RawMetadata& raw, const TagReader& tags)
{
    XmpProperties xmp;
    QString error;
    if (!raw.xmpPacket.isEmpty() && !parseXmpPacket(raw.xmpPacket, xmp, error)) {
        tags.warn(QStringLiteral("XMP packet"), error);
    }
    return xmp;
}

/// TIFF files always have tags; this asks for those that a camera writes.
bool saysNothing(const ExifInfo& exif, const XmpProperties& xmp)
{
    return exif.make.isEmpty() && exif.model.isEmpty() && exif.lensModel.isEmpty() &&
           exif.serialNumber.isEmpty() && exif.focalLengthMm == 0.0 && xmp.empty();
}

QString readCalibrationSerialNumber(const QString& path)
{
    QFile file(path);
    QString error;
    QString serialNumber;
    if (openFile(file, error)) {
        const QByteArray content = file.read(kMaxCalibrationBytes + 1);
        if (content.size() > kMaxCalibrationBytes) {
            error = QStringLiteral("larger than %1 KiB").arg(kMaxCalibrationBytes >> 10);
        } else {
            serialNumber = findCalibrationSerialNumber(content, error);
        }
    }
    if (serialNumber.isEmpty()) {
        log::warning() << path + QStringLiteral(": no serial number:") << error;
    }
    return serialNumber;
}

} // namespace

bool readExif(const QString& path, ExifInfo& exif, QString& error)
{
    QStringList notes;
    if (!readExif(path, exif, notes, error)) {
        return false;
    }
    for (const QString& note : notes) {
        log::warning() << path + QLatin1Char(':') << note;
    }
    return true;
}

bool readExif(const QString& path, ExifInfo& exif, QStringList& notes, QString& error)
{
    QFile file(path);
    RawMetadata raw;
    if (!openFile(file, error) || !readRawMetadata(file, raw, error)) {
        return false;
    }
    const TagReader tags(raw);
    const XmpProperties xmp = readXmp(raw, tags);
    ExifInfo result = makeRecord(raw, tags, xmp);
    const ImageBands found = findBands(tags, xmp, readJpegComponents(file));
    result.bands = found.bands;
    result.bandsNamed = found.named;
    const QString serialNumber = findSerialNumber(tags, xmp);
    if (!serialNumber.isEmpty()) {
        result.serialNumber = serialNumber;
    }
    if (result.serialNumber.isEmpty()) {
        result.serialNumber = readPhaseOneSerialNumber(file);
    }
    if (saysNothing(result, xmp)) {
        error = QStringLiteral("holds no EXIF data");
        return false;
    }
    notes.clear();
    if (!raw.damage.isEmpty()) {
        notes += QStringLiteral("read in part: %1").arg(raw.damage);
    }
    if (!tags.notes().isEmpty()) {
        notes += QStringLiteral("left out: %1").arg(tags.notes().join(QStringLiteral("; ")));
    }
    exif = result;
    return true;
}

QString getSerialNumber(const QString& path)
{
    if (file::filename(path) == QLatin1String("sequoia_therm.dat")) {
        return readCalibrationSerialNumber(path);
    }
    ExifInfo exif;
    QString error;
    if (!readExif(path, exif, error)) {
        log::warning() << path + QStringLiteral(": no serial number:") << error;
    } else if (exif.serialNumber.isEmpty()) {
        log::info() << path + QStringLiteral(": no serial number");
    }
    return exif.serialNumber;
}

} // namespace lumo::exif
