// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/abstract_camera.h"
#include "lumo/camerageometry/export.h"

#include <Eigen/Core>

#include <cstddef>
#include <optional>
#include <vector>

namespace lumo {

/// A fisheye lens: the distance from the image centre is a polynomial of the
/// angle between ray and optical axis (J. Kannala, S. Brandt, "A generic
/// camera model and calibration method", PAMI 28(8), 2006, with even powers
/// too), followed by an affine map (D. Scaramuzza, A. Martinelli,
/// R. Siegwart, ICVS 2006). With s = sqrt(X^2 + Y^2):
///
///     theta = (2 / pi) atan2(s, Z)               0 forward, 1 sideways, 2 backward
///     rho   = p0 + p1 theta + p2 theta^2 + ...
///     (u)   (cx)   ( C D )       ( X / s )
///     (v) = (cy) + ( E F ) * rho ( Y / s )
///
/// The valid field is the range of theta, up to less than 2, in which rho is
/// positive and has grown all the way from the axis. The axis itself belongs
/// to it if p0 = 0; with another p0 its image is not a point: p0 > 0 leaves a
/// hole of radius p0 in the image, p0 < 0 one in the field of view.
class LUMO_CAMERAGEOMETRY_EXPORT FisheyeCamera final : public AbstractCamera
{
public:
    /// The entries of the affine map, pixels.
    struct Affine
    {
        double c;
        double d;
        double e;
        double f;
    };

    /// \param principalPoint  pixels
    /// \param polynomial  p0, p1, ...; at least two, p1 > 0
    /// \throws std::invalid_argument if a number is not finite, the polynomial
    ///         is too short, does not grow at the axis or is nowhere positive
    ///         in the field, the affine map is singular, or as AbstractCamera
    FisheyeCamera(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint,
        std::vector<double> polynomial, const Affine& affine);

    [[nodiscard]] LensType lensType() const override { return LensType::Fisheye; }

    /// (2 / pi) p1 sqrt(|C F - D E|): the mean over all directions.
    [[nodiscard]] double focalLength() const override;
    [[nodiscard]] std::optional<Eigen::Vector2d> project(
        const Eigen::Vector3d& pointInCameraFrame) const override;
    [[nodiscard]] std::optional<Eigen::Vector3d> backProject(
        const Eigen::Vector2d& pixel) const override;

    /// p0, p1, ..., without unit.
    [[nodiscard]] const std::vector<double>& polynomial() const noexcept { return m_polynomial; }

    [[nodiscard]] const Affine& affine() const noexcept { return m_affine; }

    /// The end of the valid field, as theta: 2, or the first place where the
    /// polynomial stops growing.
    [[nodiscard]] double maximumTheta() const noexcept { return m_maximumTheta; }

private:
    [[nodiscard]] double thetaAt(double rho) const;

    std::vector<double> m_polynomial;
    Affine m_affine;
    double m_maximumTheta;
};

} // namespace lumo
