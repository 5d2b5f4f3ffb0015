// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/many_pairs.h"

#include "init/similarity/portable_math.h"

#include <algorithm>
#include <cmath>

namespace lumo::similarity {

namespace {

/// A few hundred pairs show the model as well as all, to a tenth of the noise.
constexpr std::size_t kSample = 512;
constexpr int kRoundsOnSample = 8;
constexpr int kRoundsOnAll = 12;
/// A step this small, in standard deviations of the parameters, changes no error by 0.1 %.
constexpr double kSettled = 0.02;
/// Less of the pairs left over is not searched for a second motion.
constexpr double kWorthSearching = 0.15;
constexpr std::size_t kSamplesForSecond = 640;
constexpr double kSmallestSecond = 0.08;
constexpr double kFewestInSecond = 8.0;
/// Motions are two if they differ by this many standard deviations of the noise.
constexpr double kApart = 6.0;
/// Nearer to each other in number, neither is the larger one.
constexpr double kEqualHalves = 0.05;

/// How far two models move the unit box apart, squared: the models of a scene.
double squaredDifference(const Model& a, const Model& b, const Eigen::Vector3d& centre)
{
    const Eigen::Matrix3d linear = a.scale * a.rotation - b.scale * b.rotation;
    return (a.apply(centre) - b.apply(centre)).squaredNorm() + linear.squaredNorm() / 12.0;
}

Moments momentsOf(const Scene& scene, const std::vector<double>& weights)
{
    // Along columns, as this is most of a round's time.
    const double* const c[6] = {scene.columns[0].data(), scene.columns[1].data(),
                                scene.columns[2].data(), scene.columns[3].data(),
                                scene.columns[4].data(), scene.columns[5].data()};
    double w = 0.0;
    double s[6] = {};
    double h[9] = {};
    double q = 0.0;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double weight = weights[i];
        const double x = weight * c[3][i];
        const double y = weight * c[4][i];
        const double z = weight * c[5][i];
        w += weight;
        s[3] += x;
        s[4] += y;
        s[5] += z;
        q += x * c[3][i] + y * c[4][i] + z * c[5][i];
        for (std::size_t k = 0; k < 3; ++k) {
            s[k] += weight * c[k][i];
            h[3 * k] += c[k][i] * x;
            h[3 * k + 1] += c[k][i] * y;
            h[3 * k + 2] += c[k][i] * z;
        }
    }
    Moments moments;
    moments.weight = w;
    moments.sum1 = {s[0], s[1], s[2]};
    moments.sum2 = {s[3], s[4], s[5]};
    moments.cross << h[0], h[1], h[2], h[3], h[4], h[5], h[6], h[7], h[8];
    moments.square2 = q;
    return moments;
}

/// The mixture of the residuals and the model, each from the other, until they settle.
void settle(const Scene& scene, int rounds, Mixed& mixed)
{
    for (int round = 0; round < rounds; ++round) {
        mixed.mixture.estimate();
        mixed.mixture.weigh(mixed.squares, mixed.fitWeights);
        const bool plain = !mixed.parameters.byAxis && scene.precision[0].empty();
        const Moments moments = plain ? momentsOf(scene, mixed.fitWeights) : Moments();
        const Model before = mixed.model;
        mixed.model =
            plain ? fit(moments, mixed.parameters) : fit(scene, mixed.parameters, mixed.fitWeights);
        squaredResiduals(scene, mixed.parameters, mixed.model, mixed.squares);
        mixed.mixture.count(mixed.squares);
        const Eigen::Vector3d centre =
            plain ? Eigen::Vector3d(moments.sum2 / std::max(moments.weight, 1e-300))
                  : Eigen::Vector3d(Eigen::Vector3d::Zero());
        const double error =
            7.0 * mixed.mixture.narrowVariance() / std::max(mixed.mixture.right(), 1.0);
        if (squaredDifference(mixed.model, before, centre) < kSettled * kSettled * error) {
            break;
        }
    }
    mixed.mixture.estimate();
}

Mixed startOf(const Scene& sample, const Parameters& parameters, const Found& found)
{
    Mixed mixed{
        found.model,
        LengthMixture(sample.logVolume, parameterCount(parameters.freedom)),
        parameters,
        {},
        {}};
    squaredResiduals(sample, parameters, mixed.model, mixed.squares);
    mixed.mixture.count(mixed.squares);
    mixed.mixture.start(found.share.square, found.share.count);
    settle(sample, kRoundsOnSample, mixed);
    return mixed;
}

std::vector<std::size_t> wrongPairs(const Mixed& mixed)
{
    std::vector<std::size_t> wrong;
    for (std::size_t i = 0; i < mixed.squares.size(); ++i) {
        if (mixed.mixture.probability(mixed.squares[i]) < 0.5) {
            wrong.push_back(i);
        }
    }
    return wrong;
}

/// Looks for a second motion among the pairs of the sample that the first leaves over.
void lookForSecond(
    const Scene& sample, const Parameters& parameters, std::mt19937& generator, ManyPairs& result)
{
    const std::vector<std::size_t> rest = wrongPairs(*result.best);
    const auto n = static_cast<double>(sample.size());
    if (static_cast<double>(rest.size()) < std::max(kWorthSearching * n, kFewestInSecond)) {
        return;
    }
    const Scene part = partOf(sample, rest);
    SearchLimits limits;
    limits.mostSamples = kSamplesForSecond;
    const SearchResult searched = search(part, parameters, limits, generator, {});
    if (!searched.convincing) {
        return;
    }
    Mixed second = startOf(part, parameters, searched.best.front());
    const double pairs = second.mixture.right();
    const double noise = result.best->mixture.variance();
    const bool apart =
        squaredDifference(second.model, result.best->model, Eigen::Vector3d::Zero()) >
        kApart * kApart * noise;
    if (pairs < std::max(kFewestInSecond, kSmallestSecond * n) || !apart) {
        return;
    }
    result.secondShare = pairs / n;
    const double first = result.best->mixture.right();
    result.undecided = std::abs(first - pairs) <= kEqualHalves * (first + pairs);
    if (pairs > first) {
        result.secondShare = first / n;
        squaredResiduals(sample, parameters, second.model, second.squares);
        second.mixture.count(second.squares);
        settle(sample, kRoundsOnSample, second);
        std::swap(*result.best, second);
    }
    result.second = std::move(second);
}

/// Whether the residuals differ by axis, and how: precisions with a product of 1.
bool axesDiffer(const Scene& scene, const Mixed& mixed, Eigen::Vector3d& precision)
{
    Eigen::Vector3d squares = Eigen::Vector3d::Zero();
    double sum = 0.0;
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double w = mixed.fitWeights[i];
        if (w > 0.0) {
            const Eigen::Vector3d e = scene.point(0, i) - mixed.model.apply(scene.point(1, i));
            for (Eigen::Index k = 0; k < 3; ++k) {
                squares[k] += w * scene.precisionOf(static_cast<std::size_t>(k), i) * e[k] * e[k];
            }
            sum += w;
        }
    }
    const Eigen::Vector3d logs(
        portable::log(std::max(squares[0], 1e-300)), portable::log(std::max(squares[1], 1e-300)),
        portable::log(std::max(squares[2], 1e-300)));
    // Twice the gain of the log likelihood is chi square with 2 degrees of freedom: the
    // chance of more than log n + 8 is below 2 in 10,000, and smaller for more pairs.
    const double mean = portable::log(std::max(squares.sum() / 3.0, 1e-300));
    const double gain = 0.5 * sum * (3.0 * mean - logs.sum());
    if (!(gain > 0.5 * (portable::log(sum + 1.0) + 8.0))) {
        return false;
    }
    for (Eigen::Index k = 0; k < 3; ++k) {
        precision[k] = portable::exp(logs.sum() / 3.0 - logs[k]);
    }
    return true;
}

/// From the sample to all pairs.
void takeAll(const Scene& scene, Mixed& mixed)
{
    squaredResiduals(scene, mixed.parameters, mixed.model, mixed.squares);
    mixed.mixture.count(mixed.squares);
    settle(scene, kRoundsOnAll, mixed);
    constexpr int kTimes = 3; // lengths that count the axes right tell wrong pairs better
    for (int time = 0; time < kTimes; ++time) {
        Eigen::Vector3d precision;
        mixed.mixture.weigh(mixed.squares, mixed.fitWeights);
        if (!axesDiffer(scene, mixed, precision)) {
            break;
        }
        mixed.parameters.byAxis = true;
        mixed.parameters.axisPrecision = precision;
        squaredResiduals(scene, mixed.parameters, mixed.model, mixed.squares);
        mixed.mixture.count(mixed.squares);
        settle(scene, kRoundsOnAll / 2, mixed);
    }
    mixed.mixture.weigh(mixed.squares, mixed.fitWeights);
}

} // namespace

ManyPairs estimateManyPairs(
    const Scene& scene, const Parameters& parameters, std::mt19937& generator,
    const std::function<bool()>& shouldStop)
{
    const std::vector<std::size_t> chosen = sampleOfSlices(scene.size(), kSample, generator);
    const bool all = chosen.size() == scene.size();
    const Scene sample = all ? Scene() : partOf(scene, chosen);
    const Scene& searchedIn = all ? scene : sample;
    const SearchResult searched = search(searchedIn, parameters, {}, generator, shouldStop);
    ManyPairs result;
    result.stopped = searched.stopped;
    if (searched.stopped || !searched.convincing) {
        return result;
    }
    result.best = startOf(searchedIn, parameters, searched.best.front());
    lookForSecond(searchedIn, parameters, generator, result);
    if (shouldStop && shouldStop()) {
        result.stopped = true;
        return result;
    }
    takeAll(scene, *result.best);
    return result;
}

} // namespace lumo::similarity
