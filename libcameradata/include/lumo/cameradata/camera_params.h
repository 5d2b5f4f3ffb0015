// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_source.h"
#include "lumo/cameradata/export.h"
#include "lumo/cameradata/fisheye_params.h"
#include "lumo/cameradata/lens_type.h"
#include "lumo/cameradata/vignetting_data.h"
#include "lumo/imagemodel/data_type.h"

#include <QString>

#include <array>
#include <cstddef>
#include <map>

namespace lumo {

/// Interior orientation of a central perspective lens: focal length and Brown's
/// distortion (Photogrammetric Engineering 37(8), 1971). With x = X/Z, y = Y/Z
/// and r^2 = x^2 + y^2:
///     dx = x (K1 r^2 + K2 r^4 + K3 r^6) + 2 T1 x y + T2 (r^2 + 2 x^2)
///     dy = y (K1 r^2 + K2 r^4 + K3 r^6) + T1 (r^2 + 2 y^2) + 2 T2 x y
struct PerspectiveParams
{
    double focalLengthMm = 0.0;
    int distortion = 6; ///< highest power of r in the radial polynomial: 0, 2, 4 or 6
    double radialK1 = 0.0;
    double radialK2 = 0.0;
    double radialK3 = 0.0;
    double tangentialT1 = 0.0;
    double tangentialT2 = 0.0;

    /// Compares all fields exactly.
    bool operator==(const PerspectiveParams&) const = default;
};

/// The values that pixels of one data type can take.
struct PixelValueRange
{
    double min = 0.0;
    double max = 0.0;

    bool operator==(const PixelValueRange&) const = default;
};

/// A camera's sensor, lens, shutter and vignetting.
///
/// Stores lengths in millimetres; functions that take or return pixels convert with
/// `pixelSize`. The origin of image coordinates is the outer corner of the upper left
/// pixel, x points right, y down.
struct LUMO_CAMERADATA_EXPORT CameraParams
{
    QString name;
    std::size_t imageWidth = 0;  ///< pixels
    std::size_t imageHeight = 0; ///< pixels
    double pixelSize = 0.0;      ///< edge of a square pixel, mm
    double principalPointXMm = 0.0;
    double principalPointYMm = 0.0;
    LensType lensType = LensType::Perspective;
    PerspectiveParams perspective;
    FisheyeParams fisheye;
    int shutterModel = 0; ///< 0 global; 1 to 4 kinds of rolling shutter
    double lineReadoutTime =
        0.0;                     ///< milliseconds between the starts of two lines; negative upwards
    double velocityNumber = 0.0; ///< of shutter model 4
    std::map<DataType, PixelValueRange> pixelValues;
    std::map<int, VignettingData> vignetting; ///< key: f-number times 100
    CameraSource source = CameraSource::Custom;

    /// Resets all fields to those of a default-built value.
    void clearData();

    void setImageSize(std::size_t width, std::size_t height);
    void setVignettingModels(const std::map<int, VignettingData>& models);

    [[nodiscard]] double pixel2mm(double pixels) const { return pixels * pixelSize; }
    /// A length in pixels; 0 if the pixel size is 0.
    [[nodiscard]] double mm2pixel(double mm) const;

    /// Principal point (x, y) in pixels; {0, 0} if the pixel size is 0.
    [[nodiscard]] std::array<double, 2> principalPointPixel() const;
    void setPrincipalPointPixel(const std::array<double, 2>& pixels);
    /// The perspective focal length in pixels; 0 if the pixel size is 0.
    [[nodiscard]] double focalLengthPixel() const;
    void setFocalLengthPixel(double pixels);

    /// Whether the image size is width x height or height x width.
    [[nodiscard]] bool equalImageSize(std::size_t width, std::size_t height) const;

    /// The parameters of the same camera for images turned clockwise by 90 degrees.
    /// Turns size, principal point, tangential and affine terms. Does not turn the
    /// vignetting, so only a radial vignetting model stays exact.
    [[nodiscard]] CameraParams turned() const;

    /// Whether the parameters can be used: they have a valid name, an image size, a
    /// pixel size, a shutter model from 0 to 4, a lens type and its parameters (a focal
    /// length; an affine part that can be inverted), and all numbers are finite.
    /// \param[out] error  the first fault, if there is one and `verbose` is set; else
    ///     untouched
    [[nodiscard]] bool valid(QString& error, bool verbose) const;

    /// Whether the parameters are the same when written to a file (written_digits.h).
    /// Compares only the lens of the type in use, and not the source.
    [[nodiscard]] bool equal(const CameraParams& other, bool withVignetting) const;

    /// Compares all fields exactly.
    bool operator==(const CameraParams&) const = default;
};

} // namespace lumo
