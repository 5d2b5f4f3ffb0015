// SPDX-License-Identifier: Apache-2.0
#pragma once

/// The numbers of significant digits with which files store camera parameters.
/// CameraParams::equal compares with the same numbers, so that parameters equal
/// themselves after saving and loading.
namespace lumo::writtendigits {

inline constexpr int kSize = 6;        ///< pixel size and principal point
inline constexpr int kFocalLength = 7; ///< in mm
inline constexpr int kLens = 9;        ///< distortion, fisheye polynomial and affine map
inline constexpr int kValue = 10;      ///< read-out time, velocity number, pixel values
inline constexpr int kVignetting = 6;  ///< coefficients

} // namespace lumo::writtendigits
