// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"

#include <Eigen/Core>

#include <array>
#include <limits>
#include <optional>

namespace lumo {

/// Radial and tangential lens distortion in the image plane at unit depth
/// (D. C. Brown, "Close-range camera calibration", Photogrammetric
/// Engineering 37(8), 1971). With x = X/Z, y = Y/Z and r2 = x^2 + y^2:
///
///     x' = x (1 + K1 r2 + K2 r2^2 + K3 r2^3) + 2 T1 x y + T2 (r2 + 2 x^2)
///     y' = y (1 + K1 r2 + K2 r2^2 + K3 r2^3) + T1 (r2 + 2 y^2) + 2 T2 x y
///
/// All coordinates are tangents of angles, without unit. The map is used only in the
/// disc sqrt(r2) < limit(), where it is one-to-one.
///
/// A value; starts as no distortion; const calls may run in parallel.
class LUMO_CAMERAGEOMETRY_EXPORT BrownDistortion
{
public:
    BrownDistortion() = default;

    /// \param radial      K1, K2, K3
    /// \param tangential  T1, T2
    /// \throws std::invalid_argument if one is not finite
    BrownDistortion(const std::array<double, 3>& radial, const std::array<double, 2>& tangential);

    /// K1, K2, K3.
    [[nodiscard]] const std::array<double, 3>& radial() const noexcept { return m_radial; }

    /// T1, T2.
    [[nodiscard]] const std::array<double, 2>& tangential() const noexcept { return m_tangential; }

    /// Radius of the valid disc: infinite without distortion, else at most 1000 (89.94
    /// degrees off the axis). Without tangential terms, the first radius at which the
    /// distorted radius stops growing. With them, a lower bound: the map may still be
    /// one-to-one on a rim outside.
    [[nodiscard]] double limit() const noexcept { return m_limit; }

    /// Maps (x, y) to (x', y'); nullopt outside the disc.
    [[nodiscard]] std::optional<Eigen::Vector2d> distort(const Eigen::Vector2d& ideal) const;

    /// Maps (x', y') to (x, y), exact to rounding; nullopt if distort() maps no point of
    /// the disc to it.
    [[nodiscard]] std::optional<Eigen::Vector2d> undistort(const Eigen::Vector2d& distorted) const;

private:
    [[nodiscard]] Eigen::Vector2d tangentialAxis() const;

    std::array<double, 3> m_radial{};
    std::array<double, 2> m_tangential{};
    double m_limit = std::numeric_limits<double>::infinity();
};

} // namespace lumo
