// SPDX-License-Identifier: Apache-2.0
// OptimiseRigidTransform3D: finding the transform to start from.
#include "init/geometry_progress.h"
#include "init/rigid_residuals.h"
#include "init/rigid_sample_score.h"
#include "lumo/core/init/lumo_optimize_rigid_transform_3d.h"
#include "lumo/foundation/log.h"
#include "lumo/mathematics/random_indices.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <numeric>

namespace lumo {

namespace {

using rigidResiduals::Columns;
using rigidResiduals::listed;

// In units of the points, and as the sine of an angle: below it a direction is rounding.
constexpr double kShortest = 1e-12;

/// \param otherwise  what is logged if there is none
bool hasGenerator(const std::mt19937* generator, const char* otherwise)
{
    if (generator == nullptr) {
        log::important() << QStringLiteral("OptimiseRigidTransform3D::init() ") + otherwise;
    }
    return generator != nullptr;
}

void logCounts(std::size_t n, std::uint32_t sampleSize)
{
    log::debug() << "OptimiseRigidTransform3D::init() nrPoints " << n << " poi1/2 " << n << " " << n
                 << " nrTrialCorr " << sampleSize;
}

void logPairs(const Columns& pairs)
{
    for (std::size_t i = 0; i < pairs.size; ++i) {
        const Eigen::Vector3d p1 = listed(pairs, 0, i);
        const Eigen::Vector3d p2 = listed(pairs, 1, i);
        log::debug() << p1[0] << p1[1] << p1[2] << p2[0] << p2[1] << p2[2];
    }
}

/// What the random search is given; refers to its caller's numbers.
struct SearchInput
{
    Columns pairs;
    std::size_t position; ///< of the score among the sorted residual lengths
    double stopBelow;     ///< a score so good ends the search
    std::uint32_t mostTrials;
    std::uint32_t sampleSize;
    bool logSamples;
    std::mt19937& generator;
    const std::function<bool()>& shouldStop;
};

/// The random search. It changes `transform` to the best one that it finds, and `weights`
/// to those of the last sample that was scored, which need not be the best.
class Search
{
public:
    Search(
        const SearchInput& input, math::RigidTransform3D& transform, std::vector<double>& weights)
        : m_input(input)
        , m_transform(transform)
        , m_weights(weights)
        , m_scratch(weights.size())
    {}

    void run()
    {
        m_best = score(true);
        log::debug() << "median init " << m_best;
        m_bestTransform = m_transform;
        log::info() << "Transform init.";
        if (m_best >= m_input.stopBelow) {
            runTrials();
        }
        m_transform = m_bestTransform;
        log::debug() << "med best " << m_best << " nrTrials " << m_counter;
    }

private:
    [[nodiscard]] double score(bool log)
    {
        return rigidSampleScore::score(
            m_input.pairs, m_transform, m_input.position, m_weights, m_scratch, log);
    }

    void runTrials()
    {
        const auto last = static_cast<std::uint32_t>(m_input.pairs.size - 1);
        do {
            geometryProgress::report(
                m_counter, m_input.mostTrials, QStringLiteral("Transform init."));
            ++m_counter;
            const std::vector<std::uint32_t> sample =
                random::randomUniformIndices(0, last, m_input.sampleSize, &m_input.generator);
            if (!sample.empty() && rigidSampleScore::fit(m_input.pairs, sample, m_transform)) {
                scoreSample();
            }
        } while (m_counter <= m_input.mostTrials && m_best >= m_input.stopBelow &&
                 !(m_input.shouldStop && m_input.shouldStop()));
        if (m_weightsAreOld) {
            static_cast<void>(score(false));
        }
    }

    void scoreSample()
    {
        m_weightsAreOld =
            !m_input.logSamples &&
            rigidSampleScore::exceeds(m_input.pairs, m_transform, m_input.position, m_best);
        if (m_weightsAreOld) {
            return;
        }
        const double found = score(m_input.logSamples);
        if (found <= m_best) {
            m_best = found;
            m_bestTransform = m_transform;
        }
        if (m_input.logSamples) {
            log::debug() << m_counter << " best " << m_best << "(" << m_input.stopBelow << ") ";
        }
    }

    SearchInput m_input;
    math::RigidTransform3D& m_transform;
    std::vector<double>& m_weights;
    std::vector<double> m_scratch;
    std::uint32_t m_counter = 0;
    double m_best = 0.0;
    math::RigidTransform3D m_bestTransform;
    bool m_weightsAreOld = false; ///< the last sample was given up before it had any
};

/// init3() and init4().
/// \param score  computeMedian()
/// \param fit  estimateTransform()
bool startFromFirst(
    std::size_t count, std::uint32_t sampleSize, const std::function<double()>& score,
    const std::function<bool(const std::vector<std::uint32_t>&)>& fit)
{
    logCounts(count, sampleSize);
    const QString number = QString::number(count);
    log::debug() << "error init" + number + " " << score();
    std::vector<std::uint32_t> all(count);
    std::iota(all.begin(), all.end(), 0u);
    // A fit that fails leaves the transform as it is, which is what there is to start from.
    static_cast<void>(fit(all));
    log::debug() << "med init" + number + " opt " << score();
    return true;
}

} // namespace

bool OptimiseRigidTransform3D::init()
{
    const std::size_t n = m_points1.size();
    if (n != m_points2.size()) {
        log::important() << "OptimiseRigidTransform3D::init() poi1/2";
        return false;
    }
    switch (n) {
    case 0:
        return false;
    case 1:
        return init1();
    case 2:
        return init2();
    case 3:
        return init3();
    case 4:
        return init4();
    default:
        break;
    }
    if (!hasGenerator(m_rng, "random number generator not defined")) {
        return false;
    }
    m_nrTrialCorr = std::min(m_nrTrialCorr, static_cast<std::uint32_t>(n));
    logCounts(n, m_nrTrialCorr);
    const SearchInput input{
        .pairs = {m_columns.data(), n},
        .position = rigidSampleScore::quantileIndex(m_outlierRatio, n),
        .stopBelow = m_medianStop,
        .mostTrials = m_nrTrials,
        .sampleSize = m_nrTrialCorr,
        .logSamples = m_logSamples,
        .generator = *m_rng,
        .shouldStop = m_shouldStop};
    Search(input, m_transform, m_weights).run();
    return true;
}

bool OptimiseRigidTransform3D::init1()
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    logCounts(pairs.size, m_nrTrialCorr);
    logPairs(pairs);
    m_transform = {RotationMatrix(), listed(pairs, 0, 0) - listed(pairs, 1, 0), 1.0};
    return true;
}

bool OptimiseRigidTransform3D::init2()
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    const Eigen::Vector3d d1 = listed(pairs, 0, 1) - listed(pairs, 0, 0);
    const Eigen::Vector3d d2 = listed(pairs, 1, 1) - listed(pairs, 1, 0);
    const double length1 = d1.norm();
    const double length2 = d2.norm();
    if (length1 < kShortest || length2 < kShortest) {
        return init1();
    }
    logCounts(pairs.size, m_nrTrialCorr);
    logPairs(pairs);
    const Eigen::Vector3d u1 = d1 / length1;
    const Eigen::Vector3d u2 = d2 / length2;
    const Eigen::Vector3d axis = u2.cross(u1);
    const double sine = axis.norm();
    RotationMatrix rotation = m_transform.rotation();
    if (sine > kShortest) {
        rotation.setAngleAxis(axis / sine, u2.dot(u1), sine);
    }
    const double scale = length1 / length2;
    m_transform = {rotation, listed(pairs, 0, 0) - scale * (rotation * listed(pairs, 1, 0)), scale};
    return true;
}

bool OptimiseRigidTransform3D::init3()
{
    if (m_points1.size() < 3 || !hasGenerator(m_rng, "random rumbers not defined")) {
        return false;
    }
    return startFromFirst(
        3, m_nrTrialCorr, [this] { return computeMedian(); },
        [this](const auto& sample) { return estimateTransform(sample); });
}

bool OptimiseRigidTransform3D::init4()
{
    if (m_points1.size() < 4 || !hasGenerator(m_rng, "random rumbers not defined")) {
        return false;
    }
    return startFromFirst(
        4, m_nrTrialCorr, [this] { return computeMedian(); },
        [this](const auto& sample) { return estimateTransform(sample); });
}

bool OptimiseRigidTransform3D::estimateTransform(const std::vector<std::uint32_t>& sample)
{
    return rigidSampleScore::fit({m_columns.data(), m_weights.size()}, sample, m_transform);
}

double OptimiseRigidTransform3D::computeMedian()
{
    const Columns pairs{m_columns.data(), m_weights.size()};
    std::vector<double> scratch(pairs.size);
    const std::size_t position =
        pairs.size > 0 ? rigidSampleScore::quantileIndex(m_outlierRatio, pairs.size) : 0;
    return rigidSampleScore::score(pairs, m_transform, position, m_weights, scratch, true);
}

} // namespace lumo
