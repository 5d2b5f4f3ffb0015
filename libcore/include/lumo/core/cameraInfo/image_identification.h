// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/image_mode.h"
#include "lumo/core/export.h"

#include <QString>
#include <QStringList>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace lumo {

class CameraModelDb;
class KnownModes;

/// The source of a pixel size.
enum class PixelSizeOrigin : int {
    None = 0,
    Database,    ///< the camera model found
    Estimated,   ///< another image size of the same camera in the database
    Calibration, ///< a calibration in the image's own metadata
    FocalPlane,  ///< the EXIF focal plane resolution
    SensorTable, ///< the table of sensor sizes
    Focal35mm,   ///< focal length against its 35 mm equivalent
    FieldOfView, ///< a stated angle of view, or the projection of a panorama
};

/// "none", "database", "estimated", "calibration", "focalPlane", "sensorTable",
/// "focal35mm" or "fieldOfView".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(PixelSizeOrigin origin);

/// How a claim about the pixel size was judged.
enum class ClaimVerdict : int {
    Refused = 0, ///< implausible, so it did not count; PixelSizeClaim::doubt names the reason
    Taken,       ///< the pixel size used, or the finest of those that it is combined from
    Agrees,      ///< within three standard deviations of the pixel size used
    Disagrees,   ///< more than three standard deviations off the pixel size used
};

/// "refused", "taken", "agrees" or "disagrees".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(ClaimVerdict verdict);

/// One source's claim about the pixel size of an image.
struct PixelSizeClaim
{
    PixelSizeOrigin from = PixelSizeOrigin::None;
    double pixelSizeMm = 0.0; ///< of the recorded picture
    double sigmaMm = 0.0;     ///< its standard deviation
    QString formula;          ///< how it was computed; of the database, the model's name
    QString reason;           ///< what the standard deviation consists of
    QString doubt;            ///< why the claim was refused; empty if it was not
    ClaimVerdict verdict = ClaimVerdict::Refused;
    /// How many standard deviations of their difference it is off the pixel size; 0 if there
    /// is no pixel size, or where it is known to be of another camera.
    double sigmasOff = 0.0;
};

/// The camera of one image, as identified.
struct ImageIdentification
{
    /// The camera for the image as it is in the file. If no pixel size was found,
    /// only the values from the metadata are set.
    CameraData camera;
    QString modelName;                  ///< of the database's model; empty if none was found
    std::optional<CameraSource> source; ///< nothing if the camera is incomplete
    PixelSizeOrigin pixelSizeFrom = PixelSizeOrigin::None;
    /// Standard deviation of the pixel size in the file: two of them to either side are an
    /// interval of 95 %. 0 without a pixel size.
    double pixelSizeSigmaMm = 0.0;
    /// The image as it is in the file, without the debug lines of a Sequoia's raw
    /// image; the recorded size where the file holds no picture.
    std::size_t width = 0;
    std::size_t height = 0;
    ImageMode mode = ImageMode::Unknown;
    QString modeReason; ///< in words
    /// All claims about the pixel size; the database's is the first.
    std::vector<PixelSizeClaim> evidence;
    /// Reasons to doubt the pixel size, one line each: a claim that is more than three
    /// standard deviations off (refused or not), digital zoom, or metadata that name the
    /// maker but not the camera model.
    QStringList disagreements;
    /// Why there is no pixel size; empty if there is one.
    QString reason;
};

/// A database model that was considered for an image.
struct CandidateModel
{
    QString name;
    QString serialNumber; ///< of the one body that the model serves; empty for all bodies
    bool own = false;     ///< from the user's database
    bool taken = false;   ///< whether the identification uses this model
    QString rule;         ///< the rule that accepted or refused the model, in words
};

/// Identifies the cameras of images from the database and the images' metadata.
///
/// The pixel size comes from the first of these that gives one:
///  1. the database model of the image ("database")
///  2. another image size of the same camera in the database ("estimated")
///  3. the metadata, combined by exif::combinePixelSizes. The sensor table is taken to be
///     wrong in half of the cases if several cameras of the database share the name, or if
///     none of them fits the image.
///
/// The model is looked up by the image size that the camera recorded. The file may
/// contain the recorded picture scaled. The pixel size is then the recorded one times
/// recorded width over file width, and the line read-out time grows by the same
/// factor. If the proportions differ, the file is taken for a centred crop, and the
/// pixel size stays. Portrait images get the model turned clockwise.
///
/// The mode compares the file with the recorded picture. If both are equal, it
/// compares the recorded picture with the camera's largest one in the database. For
/// cameras without modes in the database a picture is native if the metadata contain its
/// size, unless an editor wrote the file or its pixels are coarser than 13 um, which no
/// consumer camera has.
///
/// A single-band image of a Sequoia that is 970 rows high counts as 960 rows high,
/// in the file and as recorded: its first 8 and last 2 rows are debug lines. The
/// ExifInfo itself keeps both heights.
///
/// The identifier refers to the database, which must outlive it and stay unchanged.
/// One thread at a time.
class LUMO_CORE_EXPORT ImageIdentifier
{
public:
    explicit ImageIdentifier(const CameraModelDb& database);
    ~ImageIdentifier();
    ImageIdentifier(const ImageIdentifier&) = delete;
    ImageIdentifier& operator=(const ImageIdentifier&) = delete;

    [[nodiscard]] ImageIdentification identify(const ExifInfo& recorded) const;

    /// All models whose identifier names the image's camera, or to which one of the
    /// image's identifiers is mapped. Sorted by name, the user's first.
    [[nodiscard]] std::vector<CandidateModel> candidates(const ExifInfo& recorded) const;

private:
    const CameraModelDb& m_database;
    std::unique_ptr<const KnownModes> m_modes;
};

/// Identifies a single image. For several images use an ImageIdentifier, which reads
/// through the database only once.
[[nodiscard]] LUMO_CORE_EXPORT ImageIdentification
identifyImage(const ExifInfo& recorded, const CameraModelDb& database);

} // namespace lumo
