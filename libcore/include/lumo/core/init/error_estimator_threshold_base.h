// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <vector>

namespace lumo {

/// What error estimators with a threshold have in common, when models are
/// compared in robust estimation: the samples whose error is below the
/// threshold (the inliers), and which of two results is better. The estimators
/// derive from this and fill it.
///
/// A value; const calls may run in parallel. Errors are in the unit of the
/// derived estimator, their mean square in its square.
class LUMO_CORE_EXPORT ErrorEstimatorThresholdBase
{
public:
    /// Threshold -1, no samples, mean square error -1: nothing is known.
    ErrorEstimatorThresholdBase();
    explicit ErrorEstimatorThresholdBase(double threshold);
    ErrorEstimatorThresholdBase(const ErrorEstimatorThresholdBase& other);
    ErrorEstimatorThresholdBase& operator=(const ErrorEstimatorThresholdBase& other);
    virtual ~ErrorEstimatorThresholdBase();

    [[nodiscard]] double threshold() const { return m_threshold; }
    void setThreshold(double threshold) { m_threshold = threshold; }
    /// Multiplies the threshold.
    void scaleThreshold(double factor) { m_threshold *= factor; }

    /// How many samples were tested.
    [[nodiscard]] std::size_t sampleSize() const { return m_sampleSize; }
    [[nodiscard]] std::size_t numInlier() const { return m_inlierIndices.size(); }
    [[nodiscard]] const std::vector<std::size_t>& inlierIndices() const { return m_inlierIndices; }
    /// Of the inliers.
    [[nodiscard]] double meanSquareError() const { return m_meanSquareError; }
    /// Inliers per sample; not finite without samples.
    [[nodiscard]] double inlierFraction() const;

    /// No samples, no inliers, mean square error 0. The threshold stays.
    void reset();

    /// More inliers, or as many with a smaller mean square error.
    [[nodiscard]] bool isBetterThan(const ErrorEstimatorThresholdBase& other) const;

protected:
    double m_threshold = -1.0;
    std::uint64_t m_sampleSize = 0;
    std::vector<std::size_t> m_inlierIndices;
    double m_meanSquareError = -1.0;
};

/// "N inlier, MSE E".
LUMO_CORE_EXPORT std::ostream& operator<<(
    std::ostream& stream, const ErrorEstimatorThresholdBase& estimator);

} // namespace lumo
