// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/image_identification.h"

#include "cameraInfo/identify/known_modes.h"
#include "cameraInfo/identify/recorded_mode.h"
#include "cameraInfo/identify/size_change.h"
#include "cameraInfo/identify/without_debug_lines.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/exif/camera_from_exif.h"

#include <algorithm>
#include <cmath>

namespace lumo {
namespace {

PixelSizeOrigin originOf(exif::PixelSizeSource source)
{
    switch (source) {
    case exif::PixelSizeSource::FocalPlane:
        return PixelSizeOrigin::FocalPlane;
    case exif::PixelSizeSource::SensorTable:
        return PixelSizeOrigin::SensorTable;
    case exif::PixelSizeSource::Focal35mm:
        return PixelSizeOrigin::Focal35mm;
    case exif::PixelSizeSource::Calibration:
        return PixelSizeOrigin::Calibration;
    case exif::PixelSizeSource::None:
        break;
    }
    return PixelSizeOrigin::None;
}

/// The identifier of the model that was found; nothing if none was.
std::optional<QString> takeFromDatabase(
    const ExifInfo& exif, const CameraModelDb& database, ImageIdentification& result)
{
    const StoredCameraModel found =
        database.storedCameraModel(exif.exifId(), exif.serialNumber, false);
    if (!found) {
        return std::nullopt;
    }
    const CameraModelFromDB& model = *found.model;
    result.modelName = model.params.name;
    result.camera.setBands(exif.bands, false);
    copyCameraModelToParams(model, found.source, result.camera, npos);
    result.source = database.calcCameraSource(result.camera, exif);
    // The generic model serves every body; the image still knows its own.
    if (result.camera.serialNumber.isEmpty()) {
        result.camera.serialNumber = exif.serialNumber;
    }
    return model.identifier();
}

PictureSize sizeOf(const CameraParams& params)
{
    return {params.imageWidth, params.imageHeight};
}

PictureSize recordedSize(const ExifInfo& exif)
{
    return {exif.imageWidth, exif.imageHeight};
}

bool isEmpty(PictureSize size)
{
    return size.width == 0 || size.height == 0;
}

/// The pixel size of the recorded picture by a model that may be of another size.
double atRecordedSize(const CameraParams& model, const ExifInfo& exif)
{
    const bool known = !isEmpty(sizeOf(model)) && !isEmpty(recordedSize(exif));
    return model.pixelSize * (known ? compareSizes(sizeOf(model), recordedSize(exif)).scale : 1.0);
}

void addClaims(
    const std::vector<exif::PixelSizeEvidence>& evidence, std::vector<PixelSizeClaim>& claims)
{
    for (const exif::PixelSizeEvidence& each : evidence) {
        claims.push_back({originOf(each.source), each.pixelSizeMm, {}, each.doubt});
    }
}

/// Takes the first claim that was not refused, and compares the others with it.
/// \returns  null if all were refused
const PixelSizeClaim* judge(std::vector<PixelSizeClaim>& claims)
{
    constexpr double kAgree = 0.05; // rounded EXIF values reach a few per cent
    const PixelSizeClaim* taken = nullptr;
    for (PixelSizeClaim& claim : claims) {
        if (!claim.doubt.isEmpty()) {
            continue;
        }
        if (taken == nullptr) {
            claim.verdict = ClaimVerdict::Taken;
            taken = &claim;
        } else {
            claim.verdict = std::abs(claim.pixelSizeMm / taken->pixelSizeMm - 1.0) <= kAgree
                                ? ClaimVerdict::Agrees
                                : ClaimVerdict::Disagrees;
        }
    }
    return taken;
}

/// Refuses the table of sensor sizes: it lists one camera of a name, and where several
/// cameras share the name it may list another one than the image's.
void doubtTable(std::vector<PixelSizeClaim>& claims)
{
    for (PixelSizeClaim& claim : claims) {
        if (claim.from == PixelSizeOrigin::SensorTable && claim.doubt.isEmpty()) {
            claim.doubt =
                QStringLiteral("several cameras have this name, but the table lists only one");
        }
    }
}

/// Makes the camera from the metadata and the pixel size that was taken.
void takeFromMetadata(
    const ExifInfo& exif, const CameraModelDb& database, double pixelSize,
    ImageIdentification& result)
{
    result.camera = exif::makeCamera(exif, pixelSize);
    if (result.camera.incomplete()) {
        CameraData unused;
        if (exif::getCamera(exif, unused, nullptr, result.reason)) {
            result.reason = QStringLiteral("the metadata yield no camera");
        }
    } else {
        result.source = database.calcCameraSource(result.camera, exif);
    }
}

QStringList findDisagreements(
    const ExifInfo& exif, const std::vector<PixelSizeClaim>& claims, const PixelSizeClaim& taken)
{
    constexpr double kZoomed = 1.01; // cameras write 1 as a fraction that may be rounded
    QStringList result;
    for (const PixelSizeClaim& claim : claims) {
        if (claim.verdict == ClaimVerdict::Disagrees) {
            result.append(QStringLiteral("the pixel size is %1 um by %2, but %3 um by %4")
                              .arg(taken.pixelSizeMm * 1000.0, 0, 'g', 4)
                              .arg(toString(taken.from))
                              .arg(claim.pixelSizeMm * 1000.0, 0, 'g', 4)
                              .arg(toString(claim.from)));
        }
    }
    if (exif.digitalZoom > kZoomed) {
        result.append(
            QStringLiteral("the digital zoom was %1: the pixels may be smaller by this factor")
                .arg(exif.digitalZoom));
    }
    return result;
}

/// Vignetting is a polynomial in pixels: with pixels that are `scale` times as large,
/// the term of x^i y^j grows by scale^(i+j).
void scaleVignetting(double scale, CameraParams& params)
{
    for (auto& [fNumber, model] : params.vignetting) {
        model.centreX /= scale;
        model.centreY /= scale;
        for (Eigen::Index i = 0; i < model.coefficients.rows(); ++i) {
            for (Eigen::Index j = 0; j < model.coefficients.cols(); ++j) {
                model.coefficients(i, j) *= std::pow(scale, static_cast<double>(i + j));
            }
        }
    }
}

/// Adapts a camera to the size in the file. Leaves it unchanged if the mode is Unknown.
void fitToFile(const SizeChange& change, PictureSize file, CameraParams& params)
{
    if (change.turned) {
        params = params.turned();
    }
    if (change.mode == ImageMode::Resized) {
        params.pixelSize *= change.scale;
        // The shutter takes the same time for fewer lines.
        params.lineReadoutTime *= change.scale;
        for (double* term :
             {&params.fisheye.c, &params.fisheye.d, &params.fisheye.e, &params.fisheye.f}) {
            *term /= change.scale;
        }
        scaleVignetting(change.scale, params);
    } else if (change.mode == ImageMode::Cropped) {
        // Files do not record where a crop was taken; cameras crop around the centre.
        const auto cut = [](std::size_t before, std::size_t after) {
            return 0.5 * (static_cast<double>(before) - static_cast<double>(after));
        };
        const double cutX = cut(params.imageWidth, file.width);
        const double cutY = cut(params.imageHeight, file.height);
        params.principalPointXMm -= params.pixel2mm(cutX);
        params.principalPointYMm -= params.pixel2mm(cutY);
        for (auto& [fNumber, model] : params.vignetting) {
            model.centreX -= cutX;
            model.centreY -= cutY;
        }
    }
    if (change.mode != ImageMode::Unknown) {
        params.setImageSize(file.width, file.height);
    }
}

/// Sets the mode. A change between recorded picture and file is reported first, because
/// it hides what the camera did.
void setMode(
    const SizeChange& change, const RecordedMode& recorded, bool sizeStated,
    ImageIdentification& result)
{
    if (change.mode != ImageMode::Native) {
        result.mode = change.mode;
        result.modeReason = change.mode == ImageMode::Unknown
                                ? QStringLiteral("the file's size fits several modes or none")
                                : QStringLiteral("the file's size against the recorded one");
    } else if (!recorded.reason.isEmpty()) {
        result.mode = recorded.mode;
        result.modeReason = recorded.reason;
    } else {
        result.mode = sizeStated ? ImageMode::Native : ImageMode::Unknown;
        result.modeReason =
            sizeStated ? QStringLiteral("the size that the metadata state; the database knows no "
                                        "size of this camera")
                       : QStringLiteral("neither the metadata nor the database give a size");
    }
}

} // namespace

QString toString(PixelSizeOrigin origin)
{
    switch (origin) {
    case PixelSizeOrigin::Database:
        return QStringLiteral("database");
    case PixelSizeOrigin::Estimated:
        return QStringLiteral("estimated");
    case PixelSizeOrigin::Calibration:
        return QStringLiteral("calibration");
    case PixelSizeOrigin::FocalPlane:
        return QStringLiteral("focalPlane");
    case PixelSizeOrigin::SensorTable:
        return QStringLiteral("sensorTable");
    case PixelSizeOrigin::Focal35mm:
        return QStringLiteral("focal35mm");
    case PixelSizeOrigin::None:
        break;
    }
    return QStringLiteral("none");
}

QString toString(ClaimVerdict verdict)
{
    switch (verdict) {
    case ClaimVerdict::Taken:
        return QStringLiteral("taken");
    case ClaimVerdict::Agrees:
        return QStringLiteral("agrees");
    case ClaimVerdict::Disagrees:
        return QStringLiteral("disagrees");
    case ClaimVerdict::Refused:
        break;
    }
    return QStringLiteral("refused");
}

ImageIdentifier::ImageIdentifier(const CameraModelDb& database)
    : m_database(database)
    , m_modes(std::make_unique<const KnownModes>(database))
{}

ImageIdentifier::~ImageIdentifier() = default;

ImageIdentification ImageIdentifier::identify(const ExifInfo& recorded) const
{
    const ExifInfo exif = withoutDebugLines(recorded);
    const PictureSize inFile{exif.fileWidth, exif.fileHeight};
    const PictureSize file = isEmpty(inFile) ? recordedSize(exif) : inFile;
    ImageIdentification result;
    result.width = file.width;
    result.height = file.height;

    const auto evidence = exif::findPixelSizeEvidence(exif);
    const std::optional<QString> identifier = takeFromDatabase(exif, m_database, result);
    const RecordedMode mode = identifier ? modeOfModel(*m_modes, *identifier)
                                         : findRecordedMode(*m_modes, exif, evidence);
    if (identifier) {
        result.evidence.push_back(
            {PixelSizeOrigin::Database,
             atRecordedSize(result.camera.params, exif),
             result.modelName,
             {}});
    } else if (mode.pixelSize > 0.0) {
        result.evidence.push_back({PixelSizeOrigin::Estimated, mode.pixelSize, mode.model, {}});
    }
    addClaims(evidence, result.evidence);
    if (severalSensors(*m_modes, exif)) {
        doubtTable(result.evidence);
    }
    const PixelSizeClaim* taken = judge(result.evidence);
    if (!identifier) {
        takeFromMetadata(exif, m_database, taken != nullptr ? taken->pixelSizeMm : 0.0, result);
    }
    if (taken != nullptr) {
        result.pixelSizeFrom = taken->from;
        result.disagreements = findDisagreements(exif, result.evidence, *taken);
        if (!mode.caution.isEmpty()) {
            result.disagreements.append(mode.caution);
        }
    }

    CameraParams& params = result.camera.params;
    if (!isEmpty(file) && !isEmpty(sizeOf(params))) {
        const SizeChange change = compareSizes(sizeOf(params), file);
        setMode(change, mode, exif.sizeStated || isEmpty(inFile), result);
        fitToFile(change, file, params);
    }
    return result;
}

ImageIdentification identifyImage(const ExifInfo& recorded, const CameraModelDb& database)
{
    return ImageIdentifier(database).identify(recorded);
}

} // namespace lumo
