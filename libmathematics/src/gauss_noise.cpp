// SPDX-License-Identifier: Apache-2.0
#include "lumo/mathematics/gauss_noise.h"

#include "lumo/foundation/log.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace lumo {

void GaussNoise::setBounds(double minimum, double maximum)
{
    if (!(minimum > 0.0 && minimum <= maximum && std::isfinite(maximum))) {
        throw std::invalid_argument(
            "GaussNoise::setBounds: not 0 < minimum <= maximum, both finite");
    }
    m_minimum = minimum;
    m_maximum = maximum;
}

void GaussNoise::clear()
{
    m_sumOfSquares = 0.0;
    m_weightSum = 0.0;
}

void GaussNoise::add(double value, double weight)
{
    m_sumOfSquares += weight * value * value;
    m_weightSum += weight;
}

bool GaussNoise::finish()
{
    const double mean = m_sumOfSquares / m_weightSum;
    if (std::isnan(mean)) { // of 0 / 0 too
        m_variance = m_maximum;
        return false;
    }
    m_variance = std::clamp(mean, m_minimum, m_maximum);
    return m_variance == mean;
}

double GaussNoise::density(double value) const
{
    return std::exp(-value * value / (2.0 * m_variance)) /
           std::sqrt(2.0 * std::numbers::pi * m_variance);
}

void GaussNoise::print() const
{
    log::debug() << "GaussNoise"
                 << " covariance:" << m_variance << " determinant:" << m_variance;
}

} // namespace lumo
