// SPDX-License-Identifier: Apache-2.0
#include "init/similarity/evidence.h"

#include "init/similarity/portable_math.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <utility>

namespace lumo::similarity {

namespace {

constexpr double kLogPi = 1.1447298858494002;
// Of many small divisions one fits too well by chance, and its evidence grows without bound
// as its residuals vanish: what each must be likelier by, times its degrees of freedom.
constexpr double kBarelyDetermined = 8.0;
// Logarithms of the ranges that parameters are uniform in beforehand.
constexpr double kLogAllRotations = 4.369; // 8 pi^2
constexpr double kLogFullTurn = 1.838;     // 2 pi
constexpr double kLogScaleRange = 2.63;    // logarithm of the scale: e^2.63 wide
constexpr double kLogDeviationRange = 3.0; // logarithm of the standard deviation: e^3 wide
// Density of a vector whose length is uniform in its logarithm over e^10: 1 / (4 pi 10 r^3).
constexpr double kLogNear = 4.834;
// Below three standard deviations a residual's logarithm says nothing more.
constexpr double kNearest = 9.0;
/// The second-largest spread of right pairs, in squared standard deviations: below it a
/// scale or a rotation would be one of noise.
constexpr double kSmallestSpread = 9.0;
/// Two motions are two if the pairs of one are off under the other by this many standard
/// deviations: small divisions of one motion differ by a few, as their own are too small.
constexpr double kApart = 10.0;
/// A second motion is believed above it: a factor of 400.
constexpr double kSecondGain = 6.0;
/// Divisions with logarithms nearer than it are about as likely.
constexpr double kSimilar = 3.0;
constexpr std::size_t kStarts = 12;
constexpr std::size_t kExamined = 3;

/// Logarithms of the gamma function at halves, and of factorials.
struct Tables
{
    Tables()
    {
        logGammaHalf = {0.0, 0.5 * kLogPi, 0.0};
        for (std::size_t twice = 3; twice <= 3 * kMostForEvidence; ++twice) {
            logGammaHalf.push_back(
                logGammaHalf[twice - 2] + portable::log(static_cast<double>(twice) / 2.0 - 1.0));
        }
        logFactorial = {0.0};
        for (std::size_t i = 1; i <= kMostForEvidence + 2; ++i) {
            logFactorial.push_back(logFactorial.back() + portable::log(static_cast<double>(i)));
        }
    }

    std::vector<double> logGammaHalf; ///< [d]: log gamma(d / 2)
    std::vector<double> logFactorial;
};

const Tables& tables()
{
    static const Tables instance;
    return instance;
}

/// Sums over right pairs, of where the model puts them.
struct Spread
{
    double count = 0.0;
    Eigen::Vector3d sum = Eigen::Vector3d::Zero();
    Eigen::Matrix3d squares = Eigen::Matrix3d::Zero();

    void add(const Eigen::Vector3d& y)
    {
        count += 1.0;
        sum += y;
        squares += y * y.transpose();
    }
    [[nodiscard]] Eigen::Matrix3d covariance() const
    {
        return squares - sum * sum.transpose() / std::max(count, 1.0);
    }
};

double determinantOf(const Eigen::Matrix3d& m)
{
    return m(0, 0) * (m(1, 1) * m(2, 2) - m(1, 2) * m(2, 1)) -
           m(0, 1) * (m(1, 0) * m(2, 2) - m(1, 2) * m(2, 0)) +
           m(0, 2) * (m(1, 0) * m(2, 1) - m(1, 1) * m(2, 0));
}

/// Whether the right pairs are spread enough to determine the parameters.
bool isSpread(const Spread& spread, Freedom freedom, double variance)
{
    const Eigen::Matrix3d c = spread.covariance();
    const double least = kSmallestSpread * variance * spread.count;
    switch (freedom) {
    case Freedom::Translation:
        return true;
    case Freedom::Vertical:
        return c(0, 0) + c(1, 1) > least;
    case Freedom::Similarity:
    case Freedom::FixedScale:
        break;
    }
    // Sum of products of two eigenvalues over the sum of all: near the second-largest.
    const double products = c(0, 0) * c(1, 1) - c(0, 1) * c(0, 1) + c(0, 0) * c(2, 2) -
                            c(0, 2) * c(0, 2) + c(1, 1) * c(2, 2) - c(1, 2) * c(1, 2);
    return products > least * c.trace();
}

class Divider
{
public:
    Divider(const Scene& scene, const Parameters& parameters)
        : m_scene(scene)
        , m_parameters(parameters)
        , m_n(scene.size())
        , m_parameterCount(static_cast<std::size_t>(similarity::parameterCount(parameters.freedom)))
        , m_far(m_n, scene.logVolume)
        , m_logSquares(m_n)
    {
        for (std::size_t i = 0; i < m_n && !scene.precision[0].empty(); ++i) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                m_far[i] += 0.5 * portable::log(scene.precision[axis][i]);
            }
        }
    }

    [[nodiscard]] double noneRight() const
    {
        return -std::accumulate(m_far.begin(), m_far.end(), 0.0) - logDivisions();
    }

    /// Fits to the right pairs and computes the evidence.
    [[nodiscard]] Division divisionOf(std::vector<double> right)
    {
        Division division;
        division.right = std::move(right);
        division.count =
            static_cast<std::size_t>(std::count(division.right.begin(), division.right.end(), 1.0));
        if (3 * division.count <= m_parameterCount ||
            division.count < fewestPairs(m_parameters.freedom)) {
            return division;
        }
        division.model = fit(m_scene, m_parameters, division.right);
        takeResiduals(division.model);
        double squares = 0.0;
        Spread spread;
        for (std::size_t i = 0; i < m_n; ++i) {
            if (division.right[i] != 0.0) {
                squares += m_squares[i];
                spread.add(division.model.apply(m_scene.point(1, i)));
            }
        }
        const double freedom = static_cast<double>(3 * division.count - m_parameterCount);
        division.variance = squares / freedom;
        const double nearest = portable::log(kNearest * division.variance);
        double cost = 0.0;
        std::size_t near = 0;
        for (std::size_t i = 0; i < m_n; ++i) {
            if (division.right[i] == 0.0) {
                cost += costOf(i, nearest, near);
            }
        }
        division.evidence = evidenceOf(squares, spread, cost, near);
        return division;
    }

    /// From a model to the division that it suggests, again until none is likelier.
    /// \param most  pairs that may be right at first
    [[nodiscard]] Division climb(Model model, std::size_t most)
    {
        constexpr int kSteps = 6;
        Division best;
        for (int step = 0; step < kSteps; ++step) {
            Division next = divisionOf(likeliestFirst(model, step == 0 ? most : m_n));
            if (!(next.evidence > best.evidence)) {
                break;
            }
            best = std::move(next);
            model = best.model;
        }
        return best;
    }

    /// Moves single pairs to the other side while that is likelier.
    void polish(Division& division)
    {
        for (bool changed = true; changed;) {
            changed = false;
            for (std::size_t i = 0; i < m_n; ++i) {
                Division other = flipped(division, i);
                if (other.evidence > division.evidence) {
                    division = std::move(other);
                    changed = true;
                }
            }
        }
    }

    [[nodiscard]] Division flipped(const Division& division, std::size_t i)
    {
        std::vector<double> right = division.right;
        right[i] = 1.0 - right[i];
        return divisionOf(std::move(right));
    }

private:
    void takeResiduals(const Model& model)
    {
        squaredResiduals(m_scene, m_parameters, model, m_squares);
        for (std::size_t i = 0; i < m_n; ++i) {
            m_logSquares[i] = portable::log(m_squares[i]);
        }
    }

    /// \param[in,out] near  counts the pairs that are wrong by less than anything
    [[nodiscard]] double costOf(std::size_t i, double nearest, std::size_t& near) const
    {
        const double cost = kLogNear + 1.5 * std::max(m_logSquares[i], nearest);
        near += cost < m_far[i] ? 1U : 0U;
        return std::min(cost, m_far[i]);
    }

    /// All numbers of right and of near pairs are equally likely beforehand.
    [[nodiscard]] double logDivisions() const
    {
        const auto n = static_cast<double>(m_n);
        return portable::log((n + 1.0) * (n + 2.0) / 2.0);
    }

    /// \param cost  of the wrong pairs
    [[nodiscard]] double evidenceOf(
        double squares, const Spread& spread, double cost, std::size_t near) const
    {
        const auto right = static_cast<std::size_t>(spread.count);
        const std::size_t freedom = 3 * right - m_parameterCount;
        const double d = static_cast<double>(freedom);
        const double variance = squares / d;
        if (!isSpread(spread, m_parameters.freedom, variance)) {
            return -1e300;
        }
        const Tables& t = tables();
        const double ways = t.logFactorial[m_n] - t.logFactorial[right] - t.logFactorial[near] -
                            t.logFactorial[m_n - right - near];
        return t.logGammaHalf[freedom] - 0.5 * d * (kLogPi + portable::log(squares)) -
               0.5 * logCurvature(spread, variance) - m_scene.logVolume - logRanges() - cost -
               ways - logDivisions() - kBarelyDetermined / d;
    }

    [[nodiscard]] double logRanges() const
    {
        const Freedom freedom = m_parameters.freedom;
        double sum = kLogDeviationRange;
        if (freedom == Freedom::Similarity || freedom == Freedom::FixedScale) {
            sum += kLogAllRotations;
        } else if (freedom == Freedom::Vertical) {
            sum += kLogFullTurn;
        }
        if (freedom == Freedom::Similarity || freedom == Freedom::Vertical) {
            sum += kLogScaleRange;
        }
        return sum;
    }

    /// Logarithm of the determinant of the normal matrix at unit variance. The variance is
    /// added to what the points determine, as no angle is less certain than about 1 rad.
    [[nodiscard]] double logCurvature(const Spread& spread, double variance) const
    {
        const Freedom freedom = m_parameters.freedom;
        const Eigen::Matrix3d c = spread.covariance();
        double sum = 3.0 * portable::log(spread.count);
        if (freedom == Freedom::Similarity || freedom == Freedom::FixedScale) {
            const Eigen::Matrix3d turn = (c.trace() + variance) * Eigen::Matrix3d::Identity() - c;
            sum += portable::log(std::max(determinantOf(turn), 1e-300));
        } else if (freedom == Freedom::Vertical) {
            sum += portable::log(c(0, 0) + c(1, 1) + variance);
        }
        if (freedom == Freedom::Similarity || freedom == Freedom::Vertical) {
            sum += portable::log(c.trace() + variance);
        }
        return sum;
    }

    /// The k pairs of the smallest residuals, with the likeliest k up to `most`. Residuals
    /// are those of the given model, not of a fit to the k pairs.
    [[nodiscard]] std::vector<double> likeliestFirst(const Model& model, std::size_t most)
    {
        takeResiduals(model);
        std::vector<std::size_t> order(m_n);
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return m_squares[a] < m_squares[b];
        });
        Spread spread;
        double squares = 0.0;
        double best = -1e301;
        std::size_t bestCount = 0;
        for (std::size_t k = 1; k <= most; ++k) {
            squares += m_squares[order[k - 1]];
            spread.add(model.apply(m_scene.point(1, order[k - 1])));
            if (3 * k <= m_parameterCount || k < fewestPairs(m_parameters.freedom)) {
                continue;
            }
            const double variance = squares / static_cast<double>(3 * k - m_parameterCount);
            const double nearest = portable::log(kNearest * variance);
            double cost = 0.0;
            std::size_t near = 0;
            for (std::size_t i = k; i < m_n; ++i) {
                cost += costOf(order[i], nearest, near);
            }
            const double evidence = evidenceOf(squares, spread, cost, near);
            if (evidence > best) {
                best = evidence;
                bestCount = k;
            }
        }
        std::vector<double> right(m_n, 0.0);
        for (std::size_t i = 0; i < bestCount; ++i) {
            right[order[i]] = 1.0;
        }
        return right;
    }

    const Scene& m_scene;
    const Parameters& m_parameters;
    std::size_t m_n;
    std::size_t m_parameterCount;
    std::vector<double> m_far; ///< cost of a pair that is anywhere
    std::vector<double> m_squares;
    std::vector<double> m_logSquares;
};

/// Different divisions, the likeliest first.
std::vector<Division> localBests(
    const Scene& scene, const Parameters& parameters, Divider& divider, std::size_t starts,
    std::mt19937& generator)
{
    SearchLimits limits;
    limits.kept = starts;
    limits.mostSamples = std::size_t{1} << 14; // of 48 pairs with 6 right ones 1 in 866 is right
    const SearchResult searched = search(scene, parameters, limits, generator, {});
    std::vector<Division> found;
    const auto add = [&](Division division) {
        const bool known = std::any_of(found.begin(), found.end(), [&](const Division& other) {
            return other.right == division.right;
        });
        if (division.evidence > -1e299 && !known) {
            found.push_back(std::move(division));
        }
    };
    const std::size_t n = scene.size();
    for (const Found& start : searched.best) {
        add(divider.climb(start.model, n));
    }
    for (const Model& model : searched.byShape) {
        add(divider.climb(model, n));
        add(divider.climb(model, std::max(n / 2, fewestPairs(parameters.freedom))));
    }
    std::vector<double> all(n, 1.0);
    add(divider.divisionOf(std::move(all)));
    std::stable_sort(found.begin(), found.end(), [](const Division& a, const Division& b) {
        return a.evidence > b.evidence;
    });
    return found;
}

std::vector<std::size_t> wrongPairs(const Division& division)
{
    std::vector<std::size_t> wrong;
    for (std::size_t i = 0; i < division.right.size(); ++i) {
        if (division.right[i] == 0.0) {
            wrong.push_back(i);
        }
    }
    return wrong;
}

/// The motion of the pairs that a division calls wrong.
/// \param[out] gain  how much likelier it is than that all of these are wrong
Division secondMotion(
    const Scene& scene, const Parameters& parameters, const Division& first,
    std::mt19937& generator, double& gain)
{
    const std::vector<std::size_t> rest = wrongPairs(first);
    Division second;
    gain = 0.0;
    if (rest.size() <= fewestPairs(parameters.freedom)) {
        return second;
    }
    const Scene part = partOf(scene, rest);
    Divider divider(part, parameters);
    std::vector<Division> found = localBests(part, parameters, divider, 4, generator);
    if (found.empty()) {
        return second;
    }
    divider.polish(found.front());
    gain = found.front().evidence - divider.noneRight();
    second = found.front();
    std::vector<double> right(scene.size(), 0.0);
    for (std::size_t i = 0; i < rest.size(); ++i) {
        right[rest[i]] = second.right[i];
    }
    second.right = std::move(right);
    return second;
}

/// Whether each has a right pair that is a wrong one of the other.
bool contradict(const Division& a, const Division& b)
{
    bool onlyA = false;
    bool onlyB = false;
    for (std::size_t i = 0; i < a.right.size(); ++i) {
        onlyA = onlyA || a.right[i] > b.right[i];
        onlyB = onlyB || b.right[i] > a.right[i];
    }
    return onlyA && onlyB;
}

/// Whether no pair is right in both.
bool haveNothingInCommon(const Division& a, const Division& b)
{
    for (std::size_t i = 0; i < a.right.size(); ++i) {
        if (a.right[i] != 0.0 && b.right[i] != 0.0) {
            return false;
        }
    }
    return true;
}

/// Whether the pairs of b do not belong to a, and not merely to a fit that is too close.
bool areApart(
    const Scene& scene, const Parameters& parameters, const Division& a, const Division& b)
{
    std::vector<double> squares;
    squaredResiduals(scene, parameters, a.model, squares);
    double sum = 0.0;
    for (std::size_t i = 0; i < squares.size(); ++i) {
        sum += b.right[i] * squares[i];
    }
    return sum > 3.0 * static_cast<double>(b.count) * kApart * kApart * (a.variance + b.variance);
}

} // namespace

namespace {

/// Of one pair more than determine a transform one may be wrong, and each division into the
/// fewest and one may be the right one: the two likeliest, for a user to judge.
void nameCandidates(Divider& divider, std::size_t n, FewPairs& result)
{
    std::vector<Division> divisions;
    for (std::size_t i = 0; i < n; ++i) {
        std::vector<double> right(n, 1.0);
        right[i] = 0.0;
        divisions.push_back(divider.divisionOf(std::move(right)));
    }
    std::stable_sort(divisions.begin(), divisions.end(), [](const Division& a, const Division& b) {
        return a.evidence > b.evidence;
    });
    if (divisions.size() > 1 && divisions[1].evidence > -1e299) {
        result.best = divisions[0];
        result.rival = divisions[1];
    }
}

} // namespace

FewPairs divideFewPairs(const Scene& scene, const Parameters& parameters, std::mt19937& generator)
{
    Divider divider(scene, parameters);
    std::vector<Division> found = localBests(scene, parameters, divider, kStarts, generator);
    FewPairs result;
    if (found.empty()) {
        result.weights.assign(scene.size(), 0.0);
        return result;
    }
    // A division is likelier by what a second motion of its wrong pairs is.
    double bestJoint = -1e301;
    for (std::size_t i = 0; i < std::min(found.size(), kExamined); ++i) {
        divider.polish(found[i]);
        double gain = 0.0;
        Division second = secondMotion(scene, parameters, found[i], generator, gain);
        if (gain > kSecondGain && !areApart(scene, parameters, found[i], second)) {
            gain = 0.0;
        }
        const double joint = found[i].evidence + std::max(gain - kSecondGain, 0.0);
        if (joint > bestJoint) {
            bestJoint = joint;
            result.best = found[i];
            result.second = gain > kSecondGain && second.count > fewestPairs(parameters.freedom)
                                ? std::optional(std::move(second))
                                : std::nullopt;
        }
    }
    if (result.second && result.second->count > result.best.count) {
        Division larger = divider.divisionOf(result.second->right);
        result.second = std::exchange(result.best, std::move(larger));
    }
    result.gain = result.best.evidence - divider.noneRight();
    // Pairs that only just determine a transform fit it too well by chance too often: then
    // any other such division is a rival.
    const bool barely = result.best.count == fewestPairs(parameters.freedom);
    const double least = barely ? -1e299 : result.best.evidence - kSimilar;
    for (const Division& other : found) {
        if (other.evidence > least && contradict(other, result.best) &&
            !(result.second && haveNothingInCommon(other, result.best)) &&
            (barely || areApart(scene, parameters, result.best, other))) {
            result.rival = other;
            break;
        }
    }
    const std::size_t fewest = fewestPairs(parameters.freedom);
    const bool undecidable = result.gain < kConvincing || result.best.count == fewest;
    if (scene.size() == fewest + 1 && undecidable) {
        nameCandidates(divider, scene.size(), result);
    }
    for (std::size_t i = 0; i < scene.size(); ++i) {
        const double other = divider.flipped(result.best, i).evidence;
        const double odds = portable::exp(other - result.best.evidence);
        result.weights.push_back(
            result.best.right[i] != 0.0 ? 1.0 / (1.0 + odds) : odds / (1.0 + odds));
    }
    return result;
}

} // namespace lumo::similarity
