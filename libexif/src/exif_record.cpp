// SPDX-License-Identifier: Apache-2.0
#include "exif_record.h"

#include "flir_block.h"
#include "irradiance.h"
#include "lens_calibration_reader.h"
#include "lumo/foundation/text.h"
#include "maker_note.h"
#include "sensor_calibration_reader.h"

#include <QRegularExpression>

#include <array>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace lumo::exif {
namespace {

constexpr double kMaxFocalLengthMm = 1e5;
constexpr double kMaxFNumber = 1000.0;
constexpr double kMaxSize = 1e6;
constexpr double kMaxResolution = 1e9;
constexpr double kMaxDiagonalMm = 100.0;
constexpr int kMaxRigCameraIndex = 255;

/// The size of an equirectangular panorama before it was scaled; 0 where it is not stated.
struct PanoramaSize
{
    std::size_t width = 0; ///< of the part that was kept
    std::size_t height = 0;
    std::size_t fullWidth = 0; ///< of the whole sphere
    std::size_t fullHeight = 0;
    bool isPanorama = false;
};

QString firstText(
    const TagReader& tags, const char* key, const XmpProperties& xmp,
    std::initializer_list<const char*> properties)
{
    QString text = tags.text(key);
    for (const char* property : properties) {
        if (text.isEmpty()) {
            text = xmp.text(property);
        }
    }
    return text;
}

PanoramaSize panoramaSize(const XmpProperties& xmp)
{
    const auto side = [&xmp](const char* property) -> std::size_t {
        bool ok = false;
        const int pixels = text::fromString<int>(xmp.text(property), &ok);
        return ok && pixels > 0 && pixels <= kMaxSize ? static_cast<std::size_t>(pixels) : 0;
    };
    if (xmp.text("GPano:ProjectionType") != QLatin1String("equirectangular")) {
        return {};
    }
    return {
        side("GPano:CroppedAreaImageWidthPixels"), side("GPano:CroppedAreaImageHeightPixels"),
        side("GPano:FullPanoWidthPixels"), side("GPano:FullPanoHeightPixels"), true};
}

/// The EXIF size is the camera's; a file that was scaled down keeps it. One that
/// is smaller than the pixel array describes something else (a preview).
void setSizes(
    const RawMetadata& raw, const TagReader& tags, const PanoramaSize& panorama, ExifInfo& exif)
{
    const auto plausible = [](std::size_t side) { return static_cast<double>(side) <= kMaxSize; };
    if (plausible(raw.pixelWidth) && plausible(raw.pixelHeight)) {
        exif.fileWidth = raw.pixelWidth;
        exif.fileHeight = raw.pixelHeight;
    } else {
        tags.warn(QStringLiteral("image size"), QStringLiteral("not plausible"));
    }
    auto width = static_cast<std::size_t>(tags.positive("Exif.Photo.PixelXDimension", kMaxSize));
    auto height = static_cast<std::size_t>(tags.positive("Exif.Photo.PixelYDimension", kMaxSize));
    if (panorama.width * panorama.height > width * height) {
        width = panorama.width;
        height = panorama.height;
    }
    const bool larger = width * height > exif.fileWidth * exif.fileHeight;
    exif.imageWidth = larger ? width : exif.fileWidth;
    exif.imageHeight = larger ? height : exif.fileHeight;
    exif.sizeStated =
        larger || (width * height > 0 && width * height == exif.fileWidth * exif.fileHeight);
}

/// Whether the picture is a panorama of the whole sphere. Of a part of one there is no lens.
bool isSpherical(const PanoramaSize& panorama, const TagReader& tags, const ExifInfo& exif)
{
    if (!panorama.isPanorama) {
        return false;
    }
    const auto near = [](std::size_t a, std::size_t b) {
        return std::abs(static_cast<double>(a) - static_cast<double>(b)) <=
               0.01 * static_cast<double>(b);
    };
    const bool isWhole =
        panorama.fullWidth == 0 || panorama.width == 0 ||
        (near(panorama.width, panorama.fullWidth) && near(panorama.height, panorama.fullHeight));
    if (!isWhole || !near(exif.imageWidth, 2 * exif.imageHeight)) {
        tags.warn(
            QStringLiteral("GPano:ProjectionType"),
            QStringLiteral("a part of a panorama, which no lens makes"));
        return false;
    }
    return true;
}

/// Angles of XMP; whatever their prefix, the first in order counts.
std::optional<FieldOfView> fieldOfView(
    const XmpProperties& xmp, const TagReader& tags, const FlirBlock& thermal)
{
    constexpr double kWidestDeg = 180.0;
    const auto angle = [&](const QString& localName) {
        const QStringList names = xmp.namesOf(localName);
        if (names.isEmpty()) {
            return 0.0;
        }
        bool ok = false;
        const double degrees =
            text::fromString<double>(xmp.text(names.front().toUtf8().constData()), &ok);
        if (!ok || !(degrees > 0.0 && degrees < kWidestDeg)) {
            tags.warn(names.front(), QStringLiteral("no angle of a lens"));
            return 0.0;
        }
        return degrees;
    };
    FieldOfView result{
        angle(QStringLiteral("CameraHorizontalFOV")), angle(QStringLiteral("CameraVerticalFOV")),
        angle(QStringLiteral("CameraDiagonalFOV"))};
    if (result == FieldOfView{}) {
        result.horizontalDeg = thermal.fieldOfViewDeg;
    }
    if (result.verticalDeg > result.horizontalDeg && result.horizontalDeg > 0.0) {
        std::swap(result.horizontalDeg, result.verticalDeg); // of a portrait picture
    }
    return result == FieldOfView{} ? std::nullopt : std::optional(result);
}

/// Millimetres in a unit of FocalPlaneResolutionUnit; 0 for other numbers.
double unitMm(int unit)
{
    switch (unit) {
    case 2:
        return 25.4;
    case 3:
        return 10.0;
    case 4:
        return 1.0;
    case 5:
        return 1e-3;
    default:
        return 0.0;
    }
}

std::optional<FocalPlaneResolution> focalPlane(const TagReader& tags)
{
    constexpr const char* kUnitKey = "Exif.Photo.FocalPlaneResolutionUnit";
    constexpr int kInch = 2;
    const double x = tags.positive("Exif.Photo.FocalPlaneXResolution", kMaxResolution);
    const double y = tags.positive("Exif.Photo.FocalPlaneYResolution", kMaxResolution);
    if (x == 0.0 || y == 0.0) {
        return std::nullopt;
    }
    const double unit = tags.number(kUnitKey).value_or(kInch);
    const double mm = unit >= 0.0 && unit <= 65535.0 ? unitMm(static_cast<int>(unit)) : 0.0;
    if (mm == 0.0) {
        tags.warn(QLatin1String(kUnitKey), QStringLiteral("%1 is no unit").arg(unit));
        return std::nullopt;
    }
    return FocalPlaneResolution{x / mm, y / mm};
}

/// "2018:04:13 08:06:58"; some programs write other separators.
QDateTime parseDateTime(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^(\d{4})[:-](\d\d)[:-](\d\d)[ T](\d\d):(\d\d):(\d\d))"));
    const QRegularExpressionMatch match = form.match(text);
    const auto part = [&match](int i) { return match.captured(i).toInt(); };
    return {QDate(part(1), part(2), part(3)), QTime(part(4), part(5), part(6)), Qt::UTC};
}

/// Digits after the decimal point of the seconds, cut to milliseconds.
int milliseconds(const QString& fraction)
{
    static const QRegularExpression digits(QStringLiteral(R"(^\d+$)"));
    return digits.match(fraction).hasMatch()
               ? fraction.leftJustified(3, QLatin1Char('0'), true).toInt()
               : 0;
}

/// Cameras whose clock was never set write blanks or zeros.
bool unsetClock(const QString& text)
{
    static const QRegularExpression form(QStringLiteral(R"(^[ :0]*$)"));
    return form.match(text).hasMatch();
}

QDateTime dateTime(const TagReader& tags)
{
    struct Field
    {
        const char* time;
        const char* fraction;
    };
    const Field fields[] = {
        {"Exif.Photo.DateTimeOriginal", "Exif.Photo.SubSecTimeOriginal"},
        {"Exif.Photo.DateTimeDigitized", "Exif.Photo.SubSecTimeDigitized"},
        {"Exif.Image.DateTime", "Exif.Photo.SubSecTime"}};
    for (const Field& field : fields) {
        const QString text = tags.text(field.time);
        if (unsetClock(text)) {
            continue;
        }
        const QDateTime time = parseDateTime(text);
        if (!time.isValid()) {
            tags.warn(QLatin1String(field.time), QStringLiteral("\"%1\" is no time").arg(text));
            continue;
        }
        QString fraction = tags.text(field.fraction);
        // Some cameras give the fraction only for the time of writing.
        if (fraction.isEmpty() && text == tags.text("Exif.Image.DateTime")) {
            fraction = tags.text("Exif.Photo.SubSecTime");
        }
        return time.addMSecs(milliseconds(fraction));
    }
    return {};
}

/// A camera's number within a rig.
std::optional<int> cameraIndex(
    const char* property, const XmpProperties& xmp, const TagReader& tags)
{
    if (!xmp.contains(property)) {
        return std::nullopt;
    }
    bool ok = false;
    const int index = text::fromString<int>(xmp.text(property), &ok);
    if (!ok || index < 0 || index > kMaxRigCameraIndex) {
        tags.warn(QLatin1String(property), QStringLiteral("not an index"));
        return std::nullopt;
    }
    return index;
}

std::optional<std::array<double, 3>> rigRelatives(const XmpProperties& xmp, const TagReader& tags)
{
    constexpr const char* kProperty = "Camera:RigRelatives";
    constexpr double kMaxDegrees = 360.0;
    if (!xmp.contains(kProperty)) {
        return std::nullopt;
    }
    // One text "x, y, z", or a list of three.
    const QStringList texts = xmp.values(kProperty).join(QLatin1Char(',')).split(QLatin1Char(','));
    std::array<double, 3> angles{};
    bool ok = texts.size() == static_cast<int>(angles.size());
    for (std::size_t i = 0; ok && i < angles.size(); ++i) {
        angles[i] = text::fromString<double>(texts[static_cast<int>(i)], &ok);
        ok = ok && std::abs(angles[i]) <= kMaxDegrees;
    }
    if (!ok) {
        tags.warn(QLatin1String(kProperty), QStringLiteral("not three angles"));
        return std::nullopt;
    }
    return angles;
}

QString captureId(const XmpProperties& xmp)
{
    for (const char* property :
         {"Camera:CaptureUUID", "drone-dji:CaptureUUID", "MicaSense:CaptureId"}) {
        QString text = xmp.text(property);
        if (!text.isEmpty()) {
            return text;
        }
    }
    return {};
}

/// The number, but for 0: the standard's way to say "not known".
double equivalentFocalLength(const TagReader& tags)
{
    constexpr const char* kKey = "Exif.Photo.FocalLengthIn35mmFilm";
    return tags.number(kKey) == 0.0 ? 0.0 : tags.positive(kKey, kMaxFocalLengthMm);
}

/// 0/0 and 0 are common ways to say that there was none.
double digitalZoom(const TagReader& tags)
{
    constexpr double kMaxZoom = 1000.0;
    const double zoom = tags.number("Exif.Photo.DigitalZoomRatio").value_or(0.0);
    return zoom > 0.0 && zoom <= kMaxZoom ? zoom : 0.0;
}

} // namespace

ExifInfo makeRecord(const RawMetadata& raw, const TagReader& tags, const XmpProperties& xmp)
{
    ExifInfo exif;
    exif.make = firstText(tags, "Exif.Image.Make", xmp, {"tiff:Make"});
    exif.model = firstText(tags, "Exif.Image.Model", xmp, {"tiff:Model"});
    exif.lensModel = firstText(tags, "Exif.Photo.LensModel", xmp, {"exifEX:LensModel", "aux:Lens"});
    exif.focalLengthMm = tags.positive("Exif.Photo.FocalLength", kMaxFocalLengthMm);
    exif.focalLength35Mm = equivalentFocalLength(tags);
    exif.digitalZoom = digitalZoom(tags);
    exif.fNumber = tags.positive("Exif.Photo.FNumber", kMaxFNumber);
    if (exif.focalLengthMm == 0.0) {
        exif.focalLengthMm = findCanonFocalLength(tags);
    }
    const PanoramaSize panorama = panoramaSize(xmp);
    setSizes(raw, tags, panorama, exif);
    exif.spherical = isSpherical(panorama, tags, exif);
    exif.focalPlane = focalPlane(tags);
    exif.sensorDiagonalMm = tags.positive("Exif.Olympus.FocalPlaneDiagonal", kMaxDiagonalMm);
    const FlirBlock thermal = readFlirBlock(raw.thermalBlock);
    exif.fieldOfView = fieldOfView(xmp, tags, thermal);
    exif.thermalWidth = thermal.rawWidth;
    exif.thermalHeight = thermal.rawHeight;
    exif.serialNumber = thermal.serialNumber;
    if (exif.lensModel.isEmpty()) {
        exif.lensModel = thermal.lensModel;
    }
    exif.software = firstText(tags, "Exif.Image.Software", xmp, {"xmp:CreatorTool"});
    exif.calibration = findLensCalibration(xmp, tags, exif);
    exif.vignetting = findVignetting(xmp, tags);
    exif.lineReadoutTimeMs = findLineReadoutTime(xmp, tags);
    exif.dateTime = dateTime(tags);
    exif.captureId = captureId(xmp);
    exif.rigName = xmp.text("Camera:RigName");
    exif.rigCameraIndex = cameraIndex("Camera:RigCameraIndex", xmp, tags);
    exif.rigRelatives = rigRelatives(xmp, tags);
    exif.rigReferenceIndex = cameraIndex("Camera:RigRelativesReferenceRigCameraIndex", xmp, tags);
    exif.irradiance = findIrradiance(xmp, tags);
    return exif;
}

} // namespace lumo::exif
