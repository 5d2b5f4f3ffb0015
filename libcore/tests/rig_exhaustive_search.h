// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/cameraInfo/rig_db_match.h"

#include <algorithm>
#include <optional>
#include <set>

namespace lumo {

/// The pair of a filter's and a rig's camera as a match of one camera; nothing
/// if they cannot be a pair.
inline std::optional<rigdb::RigDBMatch> pairByDefinition(
    const rig_camera_filter_t& a, const rig_camera_filter_t& b)
{
    rigdb::RigDBMatch pair;
    if (!a.enabled || !b.enabled) {
        return pair;
    }
    for (const RigKey key : kRigKeys) {
        if (a[key].isEmpty() || b[key].isEmpty()) {
            continue;
        }
        if (a[key].toLower() != b[key].toLower()) {
            return std::nullopt;
        }
        pair.score += key == RigKey::SerialNumber ? 4 : 1;
        pair.serialMatched = pair.serialMatched || key == RigKey::SerialNumber;
    }
    if (!a.bands.empty() && !b.bands.empty()) {
        if (!a.bands.sameNames(b.bands)) {
            return std::nullopt;
        }
        pair.score += 1;
    }
    return pair;
}

inline bool repeatsDetectionString(const std::vector<rig_camera_filter_t>& cameras)
{
    std::set<QString> seen;
    return std::any_of(cameras.begin(), cameras.end(), [&seen](const rig_camera_filter_t& camera) {
        const QString& text = camera[RigKey::DetectionString];
        return camera.enabled && !text.isEmpty() && !seen.insert(text.toLower()).second;
    });
}

/// The match as it is defined: all assignments are built camera by camera, and
/// the first of the best is taken. Memory and time grow with the factorial of
/// the number of cameras.
inline rigdb::RigDBMatch exhaustiveMatch(
    const RigModel& rig, const rig_filter_t& filter, bool fixedOrder)
{
    const rigdb::RigDBMatch none{-1, {}, false};
    const bool byString = filter.detection == RigCameraDetection::ByDetectionString;
    const std::size_t count = filter.cameras.size();
    if (filter.detection != rig.cameraDetection || count > rig.cameraCount() ||
        (byString && count < rig.cameraCount())) {
        return none;
    }
    std::vector<rig_camera_filter_t> rigCameras;
    for (std::size_t j = 0; j < rig.cameraCount(); ++j) {
        rigCameras.push_back(rig.attr(j).filter());
    }
    if (byString &&
        (repeatsDetectionString(filter.cameras) || repeatsDetectionString(rigCameras))) {
        return none;
    }

    std::vector<rigdb::RigDBMatch> partials{{}};
    for (std::size_t i = 0; i < count; ++i) {
        std::vector<rigdb::RigDBMatch> extended;
        for (std::size_t j = 0; j < rigCameras.size(); ++j) {
            const auto pair = pairByDefinition(filter.cameras[i], rigCameras[j]);
            if (!pair || (i != j && (fixedOrder || !byString))) {
                continue;
            }
            for (const rigdb::RigDBMatch& partial : partials) {
                if (std::count(partial.assignment.begin(), partial.assignment.end(), j) == 0) {
                    rigdb::RigDBMatch& longer = extended.emplace_back(partial);
                    longer.score += pair->score;
                    longer.serialMatched = longer.serialMatched || pair->serialMatched;
                    longer.assignment.push_back(j);
                }
            }
        }
        partials = std::move(extended);
    }
    // The first of the greatest, as operator< orders them.
    const auto best = std::max_element(partials.begin(), partials.end());
    return best == partials.end() ? none : *best;
}

} // namespace lumo
