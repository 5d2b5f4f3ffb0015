// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_data.h"
#include "lumo/cameradata/exif_info.h"
#include "lumo/cameradata/input_image.h"
#include "lumo/core/export.h"
#include "lumo/imagemodel/box.h"
#include "lumo/imagemodel/image_info.h"

#include <Eigen/Core>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

/// The Parrot Sequoia: four single-band cameras and a colour camera in one
/// device, with one serial number. Its raw single-band images are 970 rows high;
/// the first 8 and the last 2 rows hold debug lines, no picture.
///
/// All functions may run in parallel on different objects. None fails: objects that
/// are not concerned stay unchanged.
namespace lumo {

/// The images of one Sequoia device in a project.
struct ProjectInfoForSequoiaDevice
{
    /// The spectral kind of the device's first image as a number. Devices of kind
    /// 1 (multispectral) need their factory calibration file.
    std::int32_t deviceKind = 0;
    /// The folders of the device's images, each once, in the images' order.
    std::vector<QString> imageDirectories;

    bool operator==(const ProjectInfoForSequoiaDevice&) const = default;
};

/// Whether the camera's name begins with "Sequoia_".
[[nodiscard]] LUMO_CORE_EXPORT bool isSequoia(const CameraData& c);

/// Whether the image comes from a Sequoia and has no reading of its light sensor.
[[nodiscard]] LUMO_CORE_EXPORT bool isSequoiaWithMissingIrradiance(const ExifInfo& e);

/// Whether Sequoia images of three bands and Sequoia images of another number of
/// bands are among the images. Those of other cameras do not count.
[[nodiscard]] LUMO_CORE_EXPORT bool hasMixedSequoiaImages(const std::vector<InputImage>& images);

/// Whether all images, if there are any, are multispectral ones of a Sequoia.
[[nodiscard]] LUMO_CORE_EXPORT bool hasOnlySequoiaMSP(const std::vector<InputImage>& images);

/// Removes the images with exactly the bands "Red", "Green" and "Blue" in this
/// order, of whatever camera; the rest keeps its order.
/// \returns how many were removed
LUMO_CORE_EXPORT std::size_t removeSequoiaRgbImages(std::vector<InputImage>& images);

/// Groups the Sequoia images by the serial number of their device. Images without
/// one are left out, with a log warning each.
[[nodiscard]] LUMO_CORE_EXPORT std::unordered_map<QString, ProjectInfoForSequoiaDevice>
sequoiaProjectInfo(const std::vector<InputImage>& images);

/// The devices of kind 1 that have no calibration file, in the order of `devices`.
/// \param calibrationFiles  paths by serial number
[[nodiscard]] LUMO_CORE_EXPORT std::vector<QString> sequoiaSerialNumbersWithMissingCalibrationFile(
    const std::unordered_map<QString, ProjectInfoForSequoiaDevice>& devices,
    const std::unordered_map<QString, QString>& calibrationFiles);

/// Looks for each device's factory calibration file "sequoia_therm.dat" in the
/// folders of its images. Takes the first file with the device's own serial number;
/// exif::getSerialNumber documents the accepted forms.
/// \returns paths by serial number; devices without such a file have no entry
[[nodiscard]] LUMO_CORE_EXPORT std::unordered_map<QString, QString>
autodetectSequoiaFactoryCalibrationFiles(
    const std::unordered_map<QString, ProjectInfoForSequoiaDevice>& devices);

namespace sequoia {

inline constexpr int kRawHeight = 970;    ///< rows, with the debug lines
inline constexpr int kUsableHeight = 960; ///< rows, without them
inline constexpr int kFirstUsableRow = 8; ///< counted from 0

/// An image size of 970 rows becomes one of 960; the rest is kept.
LUMO_CORE_EXPORT void fixImageDimensionsToRemoveDebugLines(CameraData& c);

/// A recorded size (see ExifInfo) of 970 rows becomes one of 960. The size of the
/// pixel array in the file, which keeps its lines, stays.
LUMO_CORE_EXPORT void fixImageDimensionsToRemoveDebugLines(InputImage& img);

/// The picture in an image of 970 rows: all columns of rows 8 to 967; an empty
/// box at (0, 0) for any other height.
[[nodiscard]] LUMO_CORE_EXPORT box rectWithoutDebugLines(const ImageInfo& info);

/// Cuts an image of 970 rows to its rows 8 to 967.
LUMO_CORE_EXPORT void removeDebugLines(Eigen::MatrixXf& image);

} // namespace sequoia
} // namespace lumo
