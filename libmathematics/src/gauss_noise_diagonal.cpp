// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/gauss_noise_diagonal.h"

#include "lumo/foundation/log.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace lumo {

namespace {

// A smaller determinant can be rounding alone: scaling it up would keep an arbitrary ratio
// of the variances.
constexpr double kSmallestScalable = 1e-10;

} // namespace

template <typename Scalar, int kDimension>
GaussNoiseDiagonal<Scalar, kDimension>::GaussNoiseDiagonal()
    : m_variance(Vector::Ones())
    , m_inverseVariance(Vector::Ones())
    , m_weightSum(0)
    , m_minimumDeterminant(kDefaultMinimumDeterminant)
    , m_maximumDeterminant(kDefaultMaximumDeterminant)
    , m_normalisation(std::pow(2 * std::numbers::pi_v<Scalar>, Scalar(-kDimension) / 2))
{}

template <typename Scalar, int kDimension>
void GaussNoiseDiagonal<Scalar, kDimension>::setDeterminantBounds(Scalar minimum, Scalar maximum)
{
    if (!(minimum > 0 && minimum <= maximum && std::isfinite(maximum))) {
        throw std::invalid_argument(
            "GaussNoiseDiagonal::setDeterminantBounds: not 0 < minimum <= maximum, both finite");
    }
    m_minimumDeterminant = minimum;
    m_maximumDeterminant = maximum;
}

template <typename Scalar, int kDimension>
void GaussNoiseDiagonal<Scalar, kDimension>::clear()
{
    m_variance.setZero();
    m_weightSum = 0;
    m_normalisation = 0;
}

template <typename Scalar, int kDimension>
bool GaussNoiseDiagonal<Scalar, kDimension>::clampDeterminant()
{
    constexpr Scalar root = Scalar(1) / kDimension;
    const Scalar det = determinant();
    if (det <= m_minimumDeterminant) {
        if (std::abs(det) >= kSmallestScalable) {
            m_variance *= std::pow(m_minimumDeterminant / det, root);
        } else {
            m_variance.setConstant(std::pow(m_minimumDeterminant, root));
        }
        return false;
    }
    if (det >= m_maximumDeterminant) {
        m_variance.setConstant(std::pow(m_maximumDeterminant, root));
        return false;
    }
    return true;
}

template <typename Scalar, int kDimension>
bool GaussNoiseDiagonal<Scalar, kDimension>::finish()
{
    const bool nothingAdded = m_weightSum < std::numeric_limits<Scalar>::epsilon();
    if (nothingAdded) {
        log::important("math/GaussNoiseDiagonal", __LINE__)
            << "GaussNoise: non-positive weightSum " << m_weightSum;
        m_variance.setConstant(std::pow(m_maximumDeterminant, Scalar(1) / kDimension));
    } else {
        m_variance /= m_weightSum;
    }
    // Also clamps the fallback: its product can exceed the maximum by rounding.
    const bool within = clampDeterminant() && !nothingAdded;
    m_inverseVariance = m_variance.cwiseInverse();
    const Scalar turn = 2 * std::numbers::pi_v<Scalar>;
    m_normalisation = 1 / std::sqrt(std::pow(turn, kDimension) * determinant());
    return within;
}

template <typename Scalar, int kDimension>
Scalar GaussNoiseDiagonal<Scalar, kDimension>::determinant() const
{
    const Scalar product = m_variance.prod();
    // The exponent 1/3 is rounded, so that the cube root of 1e256 is off by 1e-13 of itself.
    constexpr Scalar kRounding = Scalar(1e-12);
    for (const Scalar bound : {m_minimumDeterminant, m_maximumDeterminant}) {
        if (std::abs(product - bound) <= kRounding * bound) {
            return bound;
        }
    }
    return product;
}

template <typename Scalar, int kDimension>
Scalar GaussNoiseDiagonal<Scalar, kDimension>::density(const Vector& value) const
{
    return m_normalisation * std::exp(Scalar(-0.5) * value.cwiseAbs2().dot(m_inverseVariance));
}

template <typename Scalar, int kDimension>
void GaussNoiseDiagonal<Scalar, kDimension>::print() const
{
    log::Streamer record = log::debug();
    record << "GaussNoiseDiagonal"
           << " covariance:";
    for (const Scalar variance : m_variance) {
        record << variance;
    }
    record << " determinant:" << determinant();
}

template class GaussNoiseDiagonal<double, 3>;

} // namespace lumo
