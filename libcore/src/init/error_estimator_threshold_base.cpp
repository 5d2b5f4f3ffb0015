// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/error_estimator_threshold_base.h"

#include <ostream>

namespace lumo {

ErrorEstimatorThresholdBase::ErrorEstimatorThresholdBase() = default;

ErrorEstimatorThresholdBase::ErrorEstimatorThresholdBase(double threshold)
    : m_threshold(threshold)
{}

ErrorEstimatorThresholdBase::ErrorEstimatorThresholdBase(const ErrorEstimatorThresholdBase&) =
    default;
ErrorEstimatorThresholdBase& ErrorEstimatorThresholdBase::operator=(
    const ErrorEstimatorThresholdBase&) = default;
ErrorEstimatorThresholdBase::~ErrorEstimatorThresholdBase() = default;

double ErrorEstimatorThresholdBase::inlierFraction() const
{
    return static_cast<double>(numInlier()) / static_cast<double>(m_sampleSize);
}

void ErrorEstimatorThresholdBase::reset()
{
    m_inlierIndices.clear();
    m_meanSquareError = 0.0;
    m_sampleSize = 0;
}

bool ErrorEstimatorThresholdBase::isBetterThan(const ErrorEstimatorThresholdBase& other) const
{
    if (numInlier() != other.numInlier()) {
        return numInlier() > other.numInlier();
    }
    return m_meanSquareError < other.m_meanSquareError;
}

std::ostream& operator<<(std::ostream& stream, const ErrorEstimatorThresholdBase& estimator)
{
    return stream << estimator.numInlier() << " inlier, MSE " << estimator.meanSquareError();
}

} // namespace lumo
