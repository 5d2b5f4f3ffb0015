// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/rig/assignment_solver.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace lumo {
namespace {

constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();
constexpr std::int64_t kInfinity = std::numeric_limits<std::int64_t>::max();

std::int64_t greatestGain(const AssignmentProblem& problem)
{
    std::int64_t greatest = 0;
    for (const std::int64_t gain : problem.gains) {
        greatest = std::max(greatest, gain);
    }
    return greatest;
}

/// The Hungarian method (H. W. Kuhn, Naval Research Logistics Quarterly 2,
/// 1955) with shortest augmenting paths (N. Tomizawa, Networks 1, 1971).
///
/// Gains are turned into costs. Each row and each column has a price such that
/// no pair costs less than the prices of its row and column together, and
/// matched pairs cost exactly that ("tight"). Any complete assignment of tight
/// pairs is then optimal, and any optimal one is made of tight pairs.
class HungarianMethod
{
public:
    explicit HungarianMethod(const AssignmentProblem& problem)
        : m_problem(problem)
        , m_greatest(greatestGain(problem))
        , m_rowPrice(problem.size, 0)
        , m_columnPrice(problem.size, 0)
        , m_rowOf(problem.size, kNone)
        , m_columnOf(problem.size, kNone)
    {}

    void solve()
    {
        for (std::size_t row = 0; row < m_problem.size; ++row) {
            augmentFrom(row);
        }
    }

    [[nodiscard]] bool usesForbiddenPair() const
    {
        for (std::size_t row = 0; row < m_problem.size; ++row) {
            if (m_problem.gain(row, m_columnOf[row]) == AssignmentProblem::kForbidden) {
                return true;
            }
        }
        return false;
    }

    /// Among the optimal assignments, chooses the columns of the rows from the
    /// last to the first as low as possible.
    void chooseLowestColumns()
    {
        for (std::size_t row = m_problem.size; row-- > 0;) {
            lowerColumnOf(row);
        }
    }

    [[nodiscard]] const std::vector<std::size_t>& columns() const { return m_columnOf; }

private:
    /// A forbidden pair costs more than any assignment without one.
    [[nodiscard]] std::int64_t cost(std::size_t row, std::size_t column) const
    {
        const std::int64_t gain = m_problem.gain(row, column);
        return gain != AssignmentProblem::kForbidden
                   ? m_greatest - gain
                   : static_cast<std::int64_t>(m_problem.size) * m_greatest + 1;
    }

    /// What the pair costs above the prices; 0 if it is tight.
    [[nodiscard]] std::int64_t slack(std::size_t row, std::size_t column) const
    {
        return cost(row, column) - m_rowPrice[row] - m_columnPrice[column];
    }

    void augmentFrom(std::size_t freeRow);
    void lowerColumnOf(std::size_t row);

    const AssignmentProblem& m_problem;
    std::int64_t m_greatest;
    std::vector<std::int64_t> m_rowPrice;
    std::vector<std::int64_t> m_columnPrice;
    std::vector<std::size_t> m_rowOf;    ///< by column
    std::vector<std::size_t> m_columnOf; ///< by row
};

/// Matches one more row: finds the cheapest path of alternately unmatched and
/// matched pairs to a free column (as Dijkstra's algorithm does, slacks being
/// lengths), makes the path tight by changing prices, and flips it.
void HungarianMethod::augmentFrom(std::size_t freeRow)
{
    const std::size_t size = m_problem.size;
    std::vector<std::int64_t> distance(size, kInfinity);
    std::vector<std::size_t> rowBefore(size, kNone);
    std::vector<bool> done(size, false);
    std::int64_t reached = 0;
    std::size_t row = freeRow;
    std::size_t end = kNone;
    while (end == kNone) {
        std::size_t nearest = kNone;
        for (std::size_t column = 0; column < size; ++column) {
            if (done[column]) {
                continue;
            }
            const std::int64_t length = reached + slack(row, column);
            if (length < distance[column]) {
                distance[column] = length;
                rowBefore[column] = row;
            }
            if (nearest == kNone || distance[column] < distance[nearest]) {
                nearest = column;
            }
        }
        done[nearest] = true;
        reached = distance[nearest];
        row = m_rowOf[nearest];
        end = row == kNone ? nearest : kNone;
    }

    m_rowPrice[freeRow] += reached;
    for (std::size_t column = 0; column < size; ++column) {
        if (done[column] && column != end) {
            m_columnPrice[column] -= reached - distance[column];
            m_rowPrice[m_rowOf[column]] += reached - distance[column];
        }
    }
    for (std::size_t column = end; column != kNone;) {
        const std::size_t holder = rowBefore[column];
        m_rowOf[column] = holder;
        column = std::exchange(m_columnOf[holder], column);
    }
}

/// Gives `row` the lowest column that leaves the assignment optimal and keeps
/// the columns of all later rows: one from which tight pairs of earlier rows
/// lead to the column that `row` has now.
void HungarianMethod::lowerColumnOf(std::size_t row)
{
    const std::size_t former = m_columnOf[row];
    // From a column that can be vacated its row moves on to next[row].
    std::vector<bool> canBeVacated(m_problem.size, false);
    std::vector<std::size_t> next(row, kNone);
    canBeVacated[former] = true;
    std::vector<std::size_t> pending{former};
    while (!pending.empty()) {
        const std::size_t column = pending.back();
        pending.pop_back();
        for (std::size_t mover = 0; mover < row; ++mover) {
            if (next[mover] == kNone && slack(mover, column) == 0) {
                next[mover] = column;
                canBeVacated[m_columnOf[mover]] = true;
                pending.push_back(m_columnOf[mover]);
            }
        }
    }

    std::size_t lowest = 0;
    while (!canBeVacated[lowest] || slack(row, lowest) != 0) {
        ++lowest; // ends at the column that the row has now
    }
    std::size_t mover = row;
    for (std::size_t column = lowest; mover != kNone;) {
        const std::size_t displaced = column == former ? kNone : m_rowOf[column];
        m_columnOf[mover] = column;
        m_rowOf[column] = mover;
        mover = displaced;
        column = displaced == kNone ? former : next[displaced];
    }
}

} // namespace

std::optional<std::vector<std::size_t>> bestAssignment(const AssignmentProblem& problem)
{
    HungarianMethod method(problem);
    method.solve();
    if (method.usesForbiddenPair()) {
        return std::nullopt;
    }
    method.chooseLowestColumns();
    return method.columns();
}

} // namespace lumo
