// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/camerageometry/export.h"

#include <Eigen/Core>

#include <cstddef>
#include <optional>

namespace lumo {

/// The interior geometry of a camera: maps rays of the camera frame to pixels and back.
/// Each derived class is one lens model.
///
/// Camera frame: right-handed, origin in the projection centre, X right, Y
/// down, Z forward along the optical axis. Pixel coordinates: u right, v down,
/// (0, 0) the outer corner of the top-left pixel, so that the image covers
/// [0, width] x [0, height]. A point (X, Y, Z) falls on
///
///     (u, v) = (cx, cy) + lens(X, Y, Z)
///
/// with the principal point (cx, cy), where lens() is the model's own formula
/// in pixels and the same for all points of a ray.
///
/// The valid field of a lens is the set of rays around the optical axis on which its
/// formula is one-to-one. Outside the image that they were fitted to, polynomials turn
/// back at some radius: rays beyond it are not projected, and pixels that only such rays
/// reach are not back-projected. Inside the field project(backProject(p)) differs from p
/// by less than 1e-9 of the image size.
///
/// Immutable apart from assignment; const calls may run in parallel. Derived
/// classes copy as values; through the base no copy is possible.
class LUMO_CAMERAGEOMETRY_EXPORT AbstractCamera
{
public:
    /// Kind of the lens. Files and databases use these numbers.
    enum class LensType : int {
        Perspective = 0, ///< PerspectiveCamera
        Fisheye = 1,     ///< FisheyeCamera
        Spherical = 2,   ///< full panorama; no model here
    };

    virtual ~AbstractCamera();

    [[nodiscard]] virtual LensType lensType() const = 0;

    /// Pixels per radian at the optical axis, greater than 0; the focal length
    /// in pixels.
    [[nodiscard]] virtual double focalLength() const = 0;

    /// The pixel on which a point falls. It need not lie within the image.
    /// \param pointInCameraFrame  in any length unit
    /// \returns nullopt outside the valid field (for a perspective camera that
    ///          includes all of Z <= 0), for the projection centre itself, and
    ///          for numbers that are not finite
    [[nodiscard]] virtual std::optional<Eigen::Vector2d> project(
        const Eigen::Vector3d& pointInCameraFrame) const = 0;

    /// The ray that falls on a pixel, of unit length, in the camera frame.
    /// \param pixel  inside or outside the image
    /// \returns nullopt if no ray of the valid field falls there, or the
    ///          numbers are not finite
    [[nodiscard]] virtual std::optional<Eigen::Vector3d> backProject(
        const Eigen::Vector2d& pixel) const = 0;

    /// Pixels, at least 1.
    [[nodiscard]] std::size_t imageWidth() const noexcept { return m_imageWidth; }
    [[nodiscard]] std::size_t imageHeight() const noexcept { return m_imageHeight; }

    /// (cx, cy), pixels.
    [[nodiscard]] const Eigen::Vector2d& principalPoint() const noexcept
    {
        return m_principalPoint;
    }

protected:
    /// \throws std::invalid_argument if a size is 0 or the principal point is
    ///         not finite
    AbstractCamera(
        std::size_t imageWidth, std::size_t imageHeight, const Eigen::Vector2d& principalPoint);
    AbstractCamera(const AbstractCamera&) = default;
    AbstractCamera(AbstractCamera&&) = default;
    AbstractCamera& operator=(const AbstractCamera&) = default;
    AbstractCamera& operator=(AbstractCamera&&) = default;

private:
    std::size_t m_imageWidth;
    std::size_t m_imageHeight;
    Eigen::Vector2d m_principalPoint;
};

} // namespace lumo
