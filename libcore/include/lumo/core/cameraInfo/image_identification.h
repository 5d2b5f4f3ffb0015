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

/// What a pixel size rests on.
enum class PixelSizeOrigin : int {
    None = 0,
    Database,    ///< the camera model found
    Estimated,   ///< another image size of the same camera in the database
    Calibration, ///< a calibration in the image's own metadata
    FocalPlane,  ///< the EXIF focal plane resolution
    SensorTable, ///< the table of sensor sizes
    Focal35mm,   ///< focal length against its 35 mm equivalent
};

/// "none", "database", "estimated", "calibration", "focalPlane", "sensorTable"
/// or "focal35mm".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(PixelSizeOrigin origin);

/// What came of a statement about the pixel size.
enum class ClaimVerdict : int {
    Refused = 0, ///< thrown out
    Taken,
    Agrees,    ///< with the one taken, within 5 %
    Disagrees, ///< not thrown out, and yet not the one taken
};

/// "refused", "taken", "agrees" or "disagrees".
[[nodiscard]] LUMO_CORE_EXPORT QString toString(ClaimVerdict verdict);

/// One statement about the pixel size of an image.
struct PixelSizeClaim
{
    PixelSizeOrigin from = PixelSizeOrigin::None;
    double pixelSizeMm = 0.0; ///< of the recorded picture
    QString model;            ///< the database's model that it rests on, if any
    QString doubt;            ///< why it was thrown out; empty if it was not
    ClaimVerdict verdict = ClaimVerdict::Refused;
};

/// What is known of the camera of one image.
struct ImageIdentification
{
    /// The camera for the image as it is in the file. Without a pixel size it
    /// is incomplete but has what the metadata says.
    CameraData camera;
    QString modelName;                  ///< of the database's model; empty if none was found
    std::optional<CameraSource> source; ///< nothing if the camera is incomplete
    PixelSizeOrigin pixelSizeFrom = PixelSizeOrigin::None;
    /// The image as it is in the file, without the debug lines of a Sequoia's raw
    /// image; the recorded size where the file holds no picture.
    std::size_t width = 0;
    std::size_t height = 0;
    ImageMode mode = ImageMode::Unknown;
    QString modeReason; ///< in words
    /// All that says something about the pixel size, the most trusted first.
    std::vector<PixelSizeClaim> evidence;
    /// What speaks against the pixel size, a line each: evidence that disagrees,
    /// digital zoom, or a camera that only its maker's name tells.
    QStringList disagreements;
    /// Why there is no pixel size; empty if there is one.
    QString reason;
};

/// A model of the database that might serve an image.
struct CandidateModel
{
    QString name;
    QString serialNumber; ///< of the one body that it is for; empty if for all
    bool own = false;     ///< of the user's database
    bool taken = false;
    QString rule; ///< what took or refused it, in words
};

/// Finds the cameras of images: the database's model, else what other image sizes
/// of the same camera and the image's metadata tell.
///
/// Pixel size: of the model found ("database"), of another size of the same camera
/// ("estimated"), else of the metadata in the order of exif::findPixelSizeEvidence,
/// without the sensor table where several cameras of the database share the name.
///
/// The model is that of the size which the camera recorded. Where the file holds the
/// same picture scaled, the pixel size is the recorded one's times recorded over own
/// width, and the line read-out time grows with it. Where the proportions differ it
/// is a crop: the pixel size stays, and the crop is taken for centred. Portrait
/// images get the model turned clockwise.
///
/// Mode: what became of the recorded picture in the file, if it is not as recorded;
/// else what the recorded picture is beside the camera's largest one in the database.
/// Of cameras without known modes a picture is native if the metadata state its size.
///
/// A single-band image of a Sequoia that is 970 rows high counts as one of 960
/// rows, in the file and as recorded: its first 8 and last 2 rows are no picture.
/// The ExifInfo itself keeps both heights.
///
/// It refers to the database, which must stay unchanged; used by one thread.
class LUMO_CORE_EXPORT ImageIdentifier
{
public:
    explicit ImageIdentifier(const CameraModelDb& database);
    ~ImageIdentifier();
    ImageIdentifier(const ImageIdentifier&) = delete;
    ImageIdentifier& operator=(const ImageIdentifier&) = delete;

    [[nodiscard]] ImageIdentification identify(const ExifInfo& recorded) const;

    /// All models whose identifier names the image's camera, or that its identifiers
    /// are mapped to, in the order of names, the user's first.
    [[nodiscard]] std::vector<CandidateModel> candidates(const ExifInfo& recorded) const;

private:
    const CameraModelDb& m_database;
    std::unique_ptr<const KnownModes> m_modes;
};

/// For a single image; of many, an ImageIdentifier looks through the database once.
[[nodiscard]] LUMO_CORE_EXPORT ImageIdentification
identifyImage(const ExifInfo& recorded, const CameraModelDb& database);

} // namespace lumo
