// SPDX-License-Identifier: Apache-2.0
#include "lumo/exif/camera_from_exif.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <vector>

namespace lumo::exif {
namespace {

/// Density of wrong values, per unit of the logarithm: anything within a factor of 4.
const double kWrongDensity = 1.0 / (2.0 * std::log(4.0));

/// Evidence of more than this many times the finest sigma confirms and does not move the
/// value: its errors are the maker's conventions rather than noise.
constexpr double kConfirmsOnly = 2.0;
/// Errors of published numbers are not independent, so several make it little finer.
constexpr double kFinestShare = 0.7;

/// Some of the evidence is right and the rest wrong.
struct Hypothesis
{
    double logSize = 0.0;
    double sigma = 0.0;
    double likelihood = 0.0; ///< later its share of all
    std::size_t finest = 0;  ///< index of the evidence of the smallest sigma
};

using Evidence = std::vector<PixelSizeEvidence>;

/// Whether the evidence moves a pixel size whose finest evidence is `finest`; else it only
/// confirms. The lengths of an equivalent are rounded, and its factor is that of a class of
/// sensors, so it adds nothing to what is known of the sensor itself.
bool moves(const PixelSizeEvidence& each, const PixelSizeEvidence& finest)
{
    const bool isOfClass =
        each.source == PixelSizeSource::Focal35mm && finest.source != PixelSizeSource::Focal35mm;
    return !isOfClass && each.sigma <= kConfirmsOnly * finest.sigma;
}

/// \param right  a bit for each of `used`, at least one set
Hypothesis assess(const Evidence& evidence, const std::vector<std::size_t>& used, std::size_t right)
{
    Hypothesis result;
    result.sigma = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < used.size(); ++i) {
        if ((right >> i & 1U) != 0 && evidence[used[i]].sigma < result.sigma) {
            result.sigma = evidence[used[i]].sigma;
            result.finest = used[i];
        }
    }
    const double finest = result.sigma;
    double weights = 0.0;
    for (std::size_t i = 0; i < used.size(); ++i) {
        const PixelSizeEvidence& each = evidence[used[i]];
        if ((right >> i & 1U) != 0 && moves(each, evidence[result.finest])) {
            weights += 1.0 / (each.sigma * each.sigma);
            result.logSize += std::log(each.pixelSizeMm) / (each.sigma * each.sigma);
        }
    }
    result.logSize /= weights;
    result.sigma = std::max(std::sqrt(1.0 / weights), kFinestShare * finest);
    const double root = std::sqrt(2.0 * std::numbers::pi);
    result.likelihood = kWrongDensity * root * result.sigma;
    for (std::size_t i = 0; i < used.size(); ++i) {
        const PixelSizeEvidence& each = evidence[used[i]];
        if ((right >> i & 1U) == 0) {
            result.likelihood *= each.wrongShare * kWrongDensity;
            continue;
        }
        const double off = (std::log(each.pixelSizeMm) - result.logSize) / each.sigma;
        result.likelihood *=
            (1.0 - each.wrongShare) * std::exp(-0.5 * off * off) / (root * each.sigma);
    }
    return result;
}

/// Evidence that counts: not doubted, and the finest of its origin. A field of view and
/// the 35 mm equivalent are one statement of the maker.
std::vector<std::size_t> countedEvidence(const Evidence& evidence)
{
    const auto finerAngle = [&evidence](std::size_t i) {
        const auto isAngle = [](const PixelSizeEvidence& each) {
            return each.doubt.isEmpty() && (each.source == PixelSizeSource::FieldOfView ||
                                            each.source == PixelSizeSource::Focal35mm);
        };
        return isAngle(evidence[i]) &&
               std::any_of(evidence.begin(), evidence.end(), [&](const PixelSizeEvidence& other) {
                   return isAngle(other) && other.sigma < evidence[i].sigma;
               });
    };
    std::vector<std::size_t> result;
    for (std::size_t i = 0; i < evidence.size(); ++i) {
        if (evidence[i].doubt.isEmpty() && evidence[i].pixelSizeMm > 0.0 && !finerAngle(i)) {
            result.push_back(i);
        }
    }
    return result;
}

/// The variance that the other hypotheses add, if together they are likely enough to matter
/// for an interval of 95 %.
/// \param all  with shares of the probability in place of likelihoods
double varianceOfDoubt(
    const std::vector<Hypothesis>& all, const Hypothesis& best, double shareOfWrong)
{
    constexpr double kNegligible = 0.1;
    const double factorOfTwo = 0.5 * std::log(2.0);
    double share = shareOfWrong;
    double variance = share * factorOfTwo * factorOfTwo;
    for (const Hypothesis& each : all) {
        const double distance = each.logSize - best.logSize;
        if (std::abs(distance) > 2.0 * best.sigma) {
            share += each.likelihood;
            variance += each.likelihood * distance * distance;
        }
    }
    return share > kNegligible ? variance : 0.0;
}

} // namespace

CombinedPixelSize combinePixelSizes(const std::vector<PixelSizeEvidence>& evidence)
{
    CombinedPixelSize result;
    const std::vector<std::size_t> used = countedEvidence(evidence);
    if (used.empty()) {
        return result;
    }
    std::vector<Hypothesis> all;
    for (std::size_t right = 1; right < (std::size_t{1} << used.size()); ++right) {
        all.push_back(assess(evidence, used, right));
    }
    double allWrong = 1.0;
    for (const std::size_t i : used) {
        allWrong *= evidence[i].wrongShare * kWrongDensity;
    }
    double total = allWrong;
    for (const Hypothesis& each : all) {
        total += each.likelihood;
    }
    for (Hypothesis& each : all) {
        each.likelihood /= total;
    }
    constexpr double kTooDoubtful = 0.4;
    if (allWrong / total > kTooDoubtful) {
        return result;
    }
    const Hypothesis best =
        *std::max_element(all.begin(), all.end(), [](const Hypothesis& a, const Hypothesis& b) {
            return a.likelihood < b.likelihood;
        });
    result.pixelSizeMm = std::exp(best.logSize);
    result.from = evidence[best.finest].source;
    result.sigmaWithoutDoubt = best.sigma;
    result.sigma =
        std::sqrt(best.sigma * best.sigma + varianceOfDoubt(all, best, allWrong / total));
    return result;
}

double sigmasApart(const PixelSizeEvidence& evidence, double pixelSizeMm, double sigma)
{
    return std::abs(std::log(evidence.pixelSizeMm / pixelSizeMm)) /
           std::hypot(evidence.sigma, sigma);
}

} // namespace lumo::exif
