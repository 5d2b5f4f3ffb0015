// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/image_identification.h"

#include "cameraInfo/identify/known_modes.h"
#include "cameraInfo/identify/pixel_size_claims.h"
#include "cameraInfo/identify/recorded_mode.h"
#include "cameraInfo/identify/size_change.h"
#include "cameraInfo/identify/without_debug_lines.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/exif/camera_from_exif.h"
#include "lumo/exif/sensor_size_table.h"

#include <algorithm>
#include <cmath>

namespace lumo {
namespace {

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

/// The name of the database's camera that the table's row describes; empty if it has none.
QString cameraOfTable(const std::vector<KnownMode>& modes, const ExifInfo& exif)
{
    constexpr double kSameSensor = 0.03;
    const auto sensor = exif::findSensorSize(exif.make, exif.model);
    for (const KnownMode& mode : modes) {
        if (sensor && std::abs(mode.widthMm() / sensor->widthMm - 1.0) <= kSameSensor) {
            return mode.name;
        }
    }
    return {};
}

/// The table of sensor sizes knows one camera of a name. Where the database knows several, or
/// none that fits the image, the table's is likely another one. Where it is known to be
/// another one, it tells nothing about this image.
void doubtTable(
    const std::vector<KnownMode>& modes, const ExifInfo& exif, const KnownPixelSize& known,
    std::vector<exif::PixelSizeEvidence>& evidence)
{
    constexpr double kWrongShare = 0.5;
    constexpr double kFarOff = 1.05;
    const QString other = cameraOfTable(modes, exif);
    for (exif::PixelSizeEvidence& each : evidence) {
        if (each.source != exif::PixelSizeSource::SensorTable) {
            continue;
        }
        const double off = known.pixelSizeMm / each.pixelSizeMm;
        if (known.pixelSizeMm > 0.0 && std::max(off, 1.0 / off) > kFarOff && !other.isEmpty() &&
            other != known.model) {
            each.wrongShare = 1.0;
            each.doubt = QStringLiteral("of another camera of this name, %1").arg(other);
        } else {
            each.wrongShare = std::max(each.wrongShare, kWrongShare);
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
            result.reason = QStringLiteral("the metadata yield no pixel size to rely on");
        }
    } else {
        result.source = database.calcCameraSource(result.camera, exif);
    }
}

QStringList findDisagreements(
    const ExifInfo& exif, const JudgedPixelSize& judged, const RecordedMode& mode)
{
    constexpr double kZoomed = 1.01; // cameras write 1 as a fraction that may be rounded
    QStringList result = contradictions(judged);
    const bool isZoomExplained =
        std::any_of(judged.claims.begin(), judged.claims.end(), [](const PixelSizeClaim& claim) {
            return claim.formula.contains(QLatin1String("digital zoom"));
        });
    if (exif.digitalZoom > kZoomed && !isZoomExplained) {
        result.append(
            QStringLiteral("the digital zoom was %1: the pixels may be smaller by this factor")
                .arg(exif.digitalZoom));
    }
    if (!mode.caution.isEmpty()) {
        result.append(mode.caution);
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

/// Pixels that only detectors of few pixels have (thermal ones, up to 25 um).
bool isTooCoarse(const ExifInfo& exif, double pixelSizeMm)
{
    constexpr double kCoarsestMm = 0.013;
    constexpr std::size_t kDetectorPixels = 1280 * 1024;
    return pixelSizeMm > kCoarsestMm && exif.imageWidth * exif.imageHeight > kDetectorPixels;
}

/// Sets the mode. A change between recorded picture and file is reported first, because
/// it hides what the camera did.
void setMode(
    const SizeChange& change, const RecordedMode& recorded, const ExifInfo& exif, bool sizeStated,
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
    } else if (exif::isEdited(exif)) {
        result.mode = ImageMode::Unknown;
        result.modeReason = QStringLiteral("an editor wrote the file: %1").arg(exif.software);
    } else if (isTooCoarse(exif, result.camera.params.pixelSize)) {
        result.mode = ImageMode::Resized;
        result.modeReason = QStringLiteral("cameras have no pixels of %1 um")
                                .arg(result.camera.params.pixelSize * 1000.0, 0, 'f', 1);
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
    case PixelSizeOrigin::FieldOfView:
        return QStringLiteral("fieldOfView");
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

    auto evidence = exif::findPixelSizeEvidence(exif);
    const std::optional<QString> identifier = takeFromDatabase(exif, m_database, result);
    const RecordedMode mode = identifier ? modeOfModel(*m_modes, *identifier)
                                         : findRecordedMode(*m_modes, exif, evidence);
    const KnownPixelSize known =
        identifier ? KnownPixelSize{PixelSizeOrigin::Database,
                                    atRecordedSize(result.camera.params, exif), result.modelName}
                   : KnownPixelSize{PixelSizeOrigin::Estimated, mode.pixelSize, mode.model};
    const std::vector<KnownMode> ofName = m_modes->of(exif.exifId());
    if (severalSensors(*m_modes, exif) || (!ofName.empty() && known.pixelSizeMm == 0.0)) {
        doubtTable(ofName, exif, known, evidence);
    }
    const JudgedPixelSize judged = judgePixelSize(known, evidence);
    if (!identifier) {
        takeFromMetadata(exif, m_database, judged.pixelSizeMm, result);
    }
    result.evidence = judged.claims;
    result.pixelSizeFrom = judged.from;
    if (judged.from != PixelSizeOrigin::None) {
        result.disagreements = findDisagreements(exif, judged, mode);
    }

    CameraParams& params = result.camera.params;
    if (!isEmpty(file) && !isEmpty(sizeOf(params))) {
        const SizeChange change = compareSizes(sizeOf(params), file);
        setMode(change, mode, exif, exif.sizeStated || isEmpty(inFile), result);
        fitToFile(change, file, params);
    }
    result.pixelSizeSigmaMm = judged.sigma * params.pixelSize;
    return result;
}

ImageIdentification identifyImage(const ExifInfo& recorded, const CameraModelDb& database)
{
    return ImageIdentifier(database).identify(recorded);
}

} // namespace lumo
