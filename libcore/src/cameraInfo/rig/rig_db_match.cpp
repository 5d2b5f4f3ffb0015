// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_db_match.h"

#include "cameraInfo/rig/assignment_solver.h"
#include "cameraInfo/rig/rig_signature.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace lumo::rigdb {
namespace {

RigDBMatch noMatch()
{
    return {-1, {}, false};
}

bool countsFit(const RigModel& rig, const rig_filter_t& filter)
{
    return filter.detection == RigCameraDetection::ByDetectionString
               ? filter.cameras.size() == rig.cameraCount()
               : filter.cameras.size() <= rig.cameraCount();
}

std::size_t fixedPoints(const RigDBMatch& match, std::size_t length)
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < length; ++i) {
        count += match.assignment[i] == i ? 1U : 0U;
    }
    return count;
}

std::vector<std::size_t> identity(std::size_t size)
{
    std::vector<std::size_t> assignment(size);
    std::iota(assignment.begin(), assignment.end(), std::size_t{0});
    return assignment;
}

/// The assignment with the greatest score, of these one with most cameras at
/// their own number, of these the first in the order that bestAssignment keeps.
std::optional<std::vector<std::size_t>> bestFreeOrder(const Signatures& signatures)
{
    const std::size_t size = signatures.filter.size();
    // One point of score outweighs all cameras at their own number.
    const auto point = static_cast<std::int64_t>(size + 1);
    AssignmentProblem problem{size, {}};
    problem.gains.reserve(size * size);
    for (std::size_t i = 0; i < size; ++i) {
        for (std::size_t j = 0; j < size; ++j) {
            const PairScore pair = pairScore(signatures.filter[i], signatures.rig[j]);
            problem.gains.push_back(
                pair.score == PairScore::kImpossible ? AssignmentProblem::kForbidden
                                                     : pair.score * point + (i == j ? 1U : 0U));
        }
    }
    return bestAssignment(problem);
}

/// The match of a given assignment; noMatch() if one of its pairs is impossible.
RigDBMatch scored(const Signatures& signatures, const std::vector<std::size_t>& assignment)
{
    RigDBMatch match{0, assignment, false};
    for (std::size_t i = 0; i < assignment.size(); ++i) {
        const PairScore pair = pairScore(signatures.filter[i], signatures.rig[assignment[i]]);
        if (pair.score == PairScore::kImpossible) {
            return noMatch();
        }
        match.score += pair.score;
        match.serialMatched = match.serialMatched || pair.serialMatched;
    }
    return match;
}

} // namespace

bool operator<(const RigDBMatch& a, const RigDBMatch& b)
{
    if (a.score != b.score) {
        return a.score < b.score;
    }
    // Only numbers that both assign are compared, else the longer one would be ahead.
    const std::size_t shorter = std::min(a.assignment.size(), b.assignment.size());
    const std::size_t ownNumberA = fixedPoints(a, shorter);
    const std::size_t ownNumberB = fixedPoints(b, shorter);
    if (ownNumberA != ownNumberB) {
        return ownNumberA < ownNumberB;
    }
    if (a.assignment.empty() != b.assignment.empty()) {
        return a.assignment.empty();
    }
    return a.assignment.size() > b.assignment.size();
}

bool operator<=(const RigDBMatch& a, const RigDBMatch& b)
{
    return !(b < a);
}

RigDBMatch matchRigDB(const RigModel& rig, const rig_filter_t& filter, bool fixedOrder)
{
    if (filter.cameras.empty()) {
        return {};
    }
    if (filter.detection != rig.cameraDetection || !countsFit(rig, filter) ||
        rig.refCameraIndex >= rig.cameraCount()) {
        return noMatch();
    }
    const Signatures signatures = signaturesOf(rig, filter);
    const bool byString = filter.detection == RigCameraDetection::ByDetectionString;
    // Cameras with one detection string cannot be distinguished by it.
    if (byString &&
        (repeatedDetectionString(signatures.filter) || repeatedDetectionString(signatures.rig))) {
        return noMatch();
    }
    if (fixedOrder || !byString) {
        return scored(signatures, identity(filter.cameras.size()));
    }
    const auto assignment = bestFreeOrder(signatures);
    return assignment ? scored(signatures, *assignment) : noMatch();
}

} // namespace lumo::rigdb
