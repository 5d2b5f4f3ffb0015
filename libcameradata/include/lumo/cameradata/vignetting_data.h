// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Eigen/Core>

namespace lumo {

/// How VignettingData describes the fall-off. Files use these numbers.
enum class VignettingType : int {
    None = 0,       ///< no description
    Polynomial = 1, ///< see VignettingData
};

/// The fall-off of brightness towards the image corners: a polynomial in the
/// distance to the centre (one column of coefficients, constant term first) or
/// in both image coordinates (a matrix; row and column are the exponents).
struct VignettingData
{
    VignettingData() = default;
    VignettingData(
        const Eigen::MatrixXd& coefficientMatrix, double centreXPx, double centreYPx,
        VignettingType vignettingType)
        : coefficients(coefficientMatrix)
        , centreX(centreXPx)
        , centreY(centreYPx)
        , type(vignettingType)
    {}

    Eigen::MatrixXd coefficients;
    double centreX = 0.0; ///< pixels from the left image edge
    double centreY = 0.0; ///< pixels from the upper image edge
    VignettingType type = VignettingType::None;

    [[nodiscard]] bool operator==(const VignettingData& other) const
    {
        return type == other.type && centreX == other.centreX && centreY == other.centreY &&
               coefficients.rows() == other.coefficients.rows() &&
               coefficients.cols() == other.coefficients.cols() &&
               coefficients == other.coefficients;
    }
};

} // namespace lumo
