// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/similarity.h"

#include "init/similarity/evidence.h"
#include "init/similarity/many_pairs.h"
#include "init/similarity/portable_math.h"
#include "init/similarity/uncertainty.h"
#include "lumo/core/init/point_pairs.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace lumo::similarity {

namespace {

/// Squares of coordinates and of their ratios to sigmas stay in the range of numbers.
constexpr double kLargestNumber = 1e50;
/// By what a reflection must be likelier: a factor of 8,000, and half the residuals.
constexpr double kClearlyMirrored = 9.0;

Outcome failure(Failure kind, std::string reason)
{
    return {kind, std::move(reason), {}};
}

std::string place(const char* list, std::size_t i)
{
    return std::string(list) + "[" + std::to_string(i) + "] ";
}

/// Empty if all is well.
std::string faultOf(const PointPairs& pairs, const Options& options)
{
    const std::size_t n = pairs.points1.size();
    if (pairs.points2.size() != n || (!pairs.sigmas.empty() && pairs.sigmas.size() != n) ||
        (!options.isCheck.empty() && options.isCheck.size() != n)) {
        return "the lists of the pairs differ in length";
    }
    const bool usesScale =
        options.freedom == Freedom::FixedScale || options.freedom == Freedom::Translation;
    if (usesScale &&
        !(options.fixedScale >= 1.0 / kLargestNumber && options.fixedScale <= kLargestNumber)) {
        return "the fixed scale is not a positive number from 1e-50 to 1e50";
    }
    const auto isPoint = [](const Eigen::Vector3d& p) {
        return (p.array().abs() <= kLargestNumber).all(); // false for NaN
    };
    for (std::size_t i = 0; i < n; ++i) {
        if (!isPoint(pairs.points1[i]) || !isPoint(pairs.points2[i])) {
            return place(isPoint(pairs.points1[i]) ? "points2" : "points1", i) +
                   "is not a point with finite coordinates of at most 1e50";
        }
        if (!pairs.sigmas.empty() && !((pairs.sigmas[i].array() >= 1.0 / kLargestNumber) &&
                                       (pairs.sigmas[i].array() <= kLargestNumber))
                                          .all()) {
            return place("sigmas", i) + "is not a positive standard deviation from 1e-50 to 1e50";
        }
    }
    return {};
}

std::vector<std::size_t> fittedPairs(const PointPairs& pairs, const Options& options)
{
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
        if (options.isCheck.empty() || !options.isCheck[i]) {
            indices.push_back(i);
        }
    }
    return indices;
}

/// What either way of estimating ends with, in the units of a scene.
struct Result
{
    Outcome outcome;
    Parameters parameters;
    Model model;
    std::vector<double> fitWeights;
    std::vector<double> weights;
    double variance = 0.0;
    double covarianceFactor = 0.0;
    double redundancy = 0.0;
    std::optional<Candidate> second;
};

Candidate candidateOf(
    const Scene& scene, const std::vector<std::size_t>& indices, const Model& model,
    double variance, const std::vector<double>& right)
{
    Candidate candidate;
    candidate.transform = transformOf(scene, model);
    candidate.sigma = std::sqrt(variance) * scene.unit1;
    for (std::size_t i = 0; i < right.size(); ++i) {
        if (right[i] >= 0.5) {
            candidate.pairs.push_back(indices[i]);
        }
    }
    return candidate;
}

std::string counted(const std::vector<std::size_t>& pairs)
{
    constexpr std::size_t kNamed = 8;
    std::string text = std::to_string(pairs.size()) + " (";
    for (std::size_t i = 0; i < pairs.size() && i < kNamed; ++i) {
        text += (i > 0 ? ", " : "") + std::to_string(pairs[i] + 1);
    }
    return text + (pairs.size() > kNamed ? ", ...)" : ")");
}

Outcome undecided(Candidate first, Candidate second)
{
    Outcome outcome = failure(
        Failure::Undecided, "two transforms explain the pairs about as well: one takes pairs " +
                                counted(first.pairs) + " to each other, the other pairs " +
                                counted(second.pairs));
    outcome.candidates = {std::move(first), std::move(second)};
    return outcome;
}

Outcome noCommonTransform()
{
    return failure(
        Failure::NoCommonTransform,
        "no transform takes clearly more pairs to each other than chance would");
}

Result fromFewPairs(
    const Scene& scene, const Parameters& parameters, const std::vector<std::size_t>& indices,
    std::mt19937& generator)
{
    Result result;
    result.parameters = parameters;
    FewPairs few = divideFewPairs(scene, parameters, generator);
    const Division& best = few.best;
    const bool untested = scene.size() == fewestPairs(parameters.freedom);
    // One pair that is off among as many as only just determine a transform: no division is
    // convincing then, and each is worth naming.
    const bool oneOff = few.rival && best.count + 1 >= scene.size();
    // So few pairs fit whatever they are: one of the many such divisions always looks good.
    const bool barely = best.count == fewestPairs(parameters.freedom);
    if (best.count == 0 || (!untested && !oneOff && (barely || few.gain < kConvincing))) {
        result.outcome = noCommonTransform();
        return result;
    }
    const auto candidate = [&](const Division& division) {
        return candidateOf(scene, indices, division.model, division.variance, division.right);
    };
    if (few.rival || (few.second && few.second->count == best.count)) {
        result.outcome =
            undecided(candidate(best), candidate(few.rival ? *few.rival : *few.second));
        return result;
    }
    if (few.second) {
        result.second = candidate(*few.second);
    }
    result.model = best.model;
    result.fitWeights = best.right;
    result.weights = std::move(few.weights);
    result.variance = best.variance;
    result.covarianceFactor = best.variance;
    result.redundancy = static_cast<double>(3 * best.count) - parameterCount(parameters.freedom);
    return result;
}

Result fromManyPairs(
    const Scene& scene, const Parameters& parameters, const std::vector<std::size_t>& indices,
    const Options& options, std::mt19937& generator)
{
    Result result;
    ManyPairs many = estimateManyPairs(scene, parameters, generator, options.shouldStop);
    if (many.stopped) {
        result.outcome = failure(Failure::Stopped, "stopped");
        return result;
    }
    if (!many.best) {
        result.outcome = noCommonTransform();
        return result;
    }
    const auto probabilities = [&](const Mixed& mixed, const std::vector<double>& squares) {
        std::vector<double> weights;
        mixed.mixture.weighRight(squares, weights);
        return weights;
    };
    Mixed& best = *many.best;
    result.weights = probabilities(best, best.squares);
    if (many.second) {
        std::vector<double> squares;
        squaredResiduals(scene, many.second->parameters, many.second->model, squares);
        many.second->mixture.count(squares);
        Candidate second = candidateOf(
            scene, indices, many.second->model, many.second->mixture.variance(),
            probabilities(*many.second, squares));
        if (many.undecided) {
            result.outcome = undecided(
                candidateOf(scene, indices, best.model, best.mixture.variance(), result.weights),
                std::move(second));
            return result;
        }
        result.second = std::move(second);
    }
    result.parameters = best.parameters;
    result.model = best.model;
    result.variance = best.mixture.variance();
    result.covarianceFactor = best.mixture.covarianceFactor();
    result.redundancy = 3.0 * best.mixture.right() - parameterCount(parameters.freedom);
    result.fitWeights = std::move(best.fitWeights);
    return result;
}

Result resultOf(
    const Scene& scene, const Parameters& parameters, const std::vector<std::size_t>& indices,
    const Options& options)
{
    std::mt19937 generator(options.seed);
    return scene.size() <= kMostForEvidence
               ? fromFewPairs(scene, parameters, indices, generator)
               : fromManyPairs(scene, parameters, indices, options, generator);
}

/// Set 2 seen in a mirror: the rotations of it are all the reflections.
Scene mirrored(Scene scene)
{
    for (double& z : scene.columns[5]) {
        z = -z;
    }
    return scene;
}

double weightedSquares(
    const Scene& scene, const Parameters& parameters, const std::vector<double>& weights)
{
    std::vector<double> squares;
    squaredResiduals(scene, parameters, fit(scene, parameters, weights), squares);
    double sum = 0.0;
    for (std::size_t i = 0; i < squares.size(); ++i) {
        sum += weights[i] * squares[i];
    }
    return sum;
}

/// Squared standard deviations that all but 0.7 % of right pairs are within: a quantile of
/// chi square with 3 degrees of freedom.
constexpr double kReach = 12.0;

/// How many squares are those of right pairs with a variance.
std::size_t countWithin(const std::vector<double>& squares, double variance)
{
    return static_cast<std::size_t>(
        std::count_if(squares.begin(), squares.end(), [&](double square) {
            return square <= kReach * variance;
        }));
}

/// Whether a reflection that starts from the pairs that fit takes clearly more to each other:
/// of a flat cloud in a mirror those near its middle plane fit without one, too.
bool reachesMoreMirrored(
    const Scene& scene, const Scene& mirror, const Parameters& parameters, const Result& result,
    double variance)
{
    std::vector<double> squares;
    squaredResiduals(scene, parameters, result.model, squares);
    const std::size_t before = countWithin(squares, variance);
    std::vector<double> weights = result.fitWeights;
    constexpr int kSteps = 4;
    for (int step = 0; step < kSteps; ++step) {
        squaredResiduals(mirror, parameters, fit(mirror, parameters, weights), squares);
        if (2 * countWithin(squares, variance) < before) {
            return false;
        }
        for (std::size_t i = 0; i < squares.size(); ++i) {
            weights[i] = squares[i] <= kReach * variance ? 1.0 : 0.0;
        }
    }
    return countWithin(squares, variance) > before + before / 4 + 3;
}

bool turnsFreely(Freedom freedom)
{
    return freedom == Freedom::Similarity || freedom == Freedom::FixedScale;
}

/// Whether the pairs that fit do so clearly better in a mirror.
/// \param parameters  as before the estimate: one axis of larger noise would hide a reflection
bool fitsMirrored(const Scene& scene, const Parameters& parameters, const Result& result)
{
    const Scene mirror = mirrored(scene);
    const double d = std::max(result.redundancy, 1.0);
    const double squares = weightedSquares(scene, parameters, result.fitWeights);
    const double rounding = 1e4 * d * scene.smallestSquare;
    if (squares <= rounding) {
        return false;
    }
    const double other = weightedSquares(mirror, parameters, result.fitWeights);
    const double ratio = squares / std::max(other, rounding);
    return (ratio > 4.0 && 0.5 * d * portable::log(ratio) > kClearlyMirrored) ||
           reachesMoreMirrored(scene, mirror, parameters, result, squares / d);
}

/// Whether there is a reflection where no rotation was found.
bool fitsOnlyMirrored(
    const Scene& scene, const Parameters& parameters, const std::vector<std::size_t>& indices,
    const Options& options, const Outcome& outcome)
{
    const bool undecided = outcome.failure == Failure::Undecided;
    if (!turnsFreely(options.freedom) ||
        (!undecided && outcome.failure != Failure::NoCommonTransform)) {
        return false;
    }
    const Result other = resultOf(mirrored(scene), parameters, indices, options);
    const double right = std::accumulate(other.fitWeights.begin(), other.fitWeights.end(), 0.0);
    double most = 0.5 * static_cast<double>(scene.size());
    double variance = 0.0;
    for (const Candidate& candidate : outcome.candidates) {
        most = std::max(most, 1.5 * static_cast<double>(candidate.pairs.size()));
        variance = std::max(variance, candidate.sigma * candidate.sigma);
    }
    // A reflection that is far less exact than what was found is none.
    const bool exact = !undecided || other.variance * scene.unit1 * scene.unit1 <= 9.0 * variance;
    return other.outcome.failure == Failure::None && right > most && exact;
}

Outcome mirroredOutcome()
{
    return failure(
        Failure::Mirrored, "the points fit as a reflection, not as a rotation; look at the order "
                           "and the signs of the axes");
}

} // namespace

int parameterCount(Freedom freedom)
{
    return static_cast<int>(freeParameters(freedom).size());
}

std::size_t fewestPairs(Freedom freedom)
{
    switch (freedom) {
    case Freedom::Vertical:
        return 2;
    case Freedom::Translation:
        return 1;
    case Freedom::Similarity:
    case Freedom::FixedScale:
        break;
    }
    return 3;
}

Outcome estimate(const PointPairs& pairs, const Options& options, Estimate& found)
{
    if (std::string fault = faultOf(pairs, options); !fault.empty()) {
        return failure(Failure::BadInput, std::move(fault));
    }
    const std::vector<std::size_t> indices = fittedPairs(pairs, options);
    if (indices.size() < fewestPairs(options.freedom)) {
        return failure(
            Failure::TooFewPairs, std::to_string(indices.size()) + " pairs do not determine it; " +
                                      std::to_string(fewestPairs(options.freedom)) +
                                      " are the fewest");
    }
    const Scene scene = makeScene(pairs, indices);
    Parameters parameters;
    parameters.freedom = options.freedom;
    parameters.fixedScale = options.fixedScale * (scene.unit2 / scene.unit1);
    parameters.byAxis = scene.precisionByAxis;
    Result result = resultOf(scene, parameters, indices, options);
    if (fitsOnlyMirrored(scene, parameters, indices, options, result.outcome)) {
        return mirroredOutcome();
    }
    if (result.outcome.failure != Failure::None) {
        return std::move(result.outcome);
    }
    if (turnsFreely(options.freedom) && fitsMirrored(scene, parameters, result)) {
        return mirroredOutcome();
    }
    Estimate estimate;
    const Fitted fitted{
        scene,
        result.parameters,
        result.model,
        result.fitWeights,
        result.covarianceFactor,
        result.redundancy};
    if (!findUncertainty(fitted, estimate.uncertainty)) {
        return failure(
            Failure::NoCommonTransform, "the pairs that fit lie on a line or in one place");
    }
    estimate.transform = transformOf(scene, result.model);
    estimate.sigma = std::sqrt(result.variance) * scene.unit1;
    estimate.sigmaFactor = estimate.sigma / scene.givenSigma;
    estimate.axisFactors = result.parameters.axisPrecision.cwiseSqrt().cwiseInverse();
    estimate.second = std::move(result.second);
    estimate.covarianceInflation = result.covarianceFactor / std::max(result.variance, 1e-300);
    estimate.weights.assign(pairs.points1.size(), 0.0);
    estimate.fitWeights.assign(pairs.points1.size(), 0.0);
    double sum = 0.0;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        estimate.weights[indices[i]] = result.weights[i];
        estimate.fitWeights[indices[i]] = result.fitWeights[i];
        sum += result.weights[i];
    }
    estimate.inlierRatio = sum / static_cast<double>(indices.size());
    found = std::move(estimate);
    return {};
}

} // namespace lumo::similarity
