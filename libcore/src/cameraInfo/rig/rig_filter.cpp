// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_filter.h"

#include <algorithm>
#include <ostream>
#include <set>

namespace lumo {
namespace {

std::size_t enabledCount(const std::vector<rig_camera_filter_t>& cameras)
{
    return static_cast<std::size_t>(
        std::count_if(cameras.begin(), cameras.end(), [](const rig_camera_filter_t& camera) {
            return camera.enabled;
        }));
}

} // namespace

rig_filter_t::rig_filter_t(std::size_t count, const QString& rigName, RigCameraDetection detectedBy)
    : name(rigName)
    , cameras(count)
    , detection(detectedBy)
{}

bool rig_filter_t::empty() const
{
    return name.isEmpty() &&
           std::all_of(cameras.begin(), cameras.end(), [](const rig_camera_filter_t& camera) {
               return camera.empty();
           });
}

bool rig_filter_t::serialNumberAvail() const
{
    return enabledCount(cameras) >= 2 &&
           std::all_of(cameras.begin(), cameras.end(), [](const rig_camera_filter_t& camera) {
               return !camera.enabled || !camera[RigKey::SerialNumber].isEmpty();
           });
}

bool rig_filter_t::bandsAvail() const
{
    return enabledCount(cameras) >= 2 &&
           std::any_of(cameras.begin(), cameras.end(), [](const rig_camera_filter_t& camera) {
               return camera.enabled && !camera.bands.empty();
           });
}

bool rig_filter_t::disabledCameraFilters() const
{
    return enabledCount(cameras) < cameras.size();
}

bool rig_filter_t::verify(bool& serialSeen, bool& uniqueDirOrPrefix) const
{
    serialSeen = false;
    uniqueDirOrPrefix = false;
    if (cameras.size() < 2) {
        return false;
    }
    uniqueDirOrPrefix = detection == RigCameraDetection::ByDetectionString;
    std::set<QString> seen;
    for (const rig_camera_filter_t& camera : cameras) {
        if (!camera.enabled) {
            continue;
        }
        serialSeen = serialSeen || !camera[RigKey::SerialNumber].isEmpty();
        if (camera[RigKey::ExifString].isEmpty()) {
            return false;
        }
        const QString& detectionString = camera[RigKey::DetectionString];
        if (detectionString.isEmpty() || !seen.insert(detectionString).second) {
            uniqueDirOrPrefix = false;
        }
    }
    if (enabledCount(cameras) < 2) {
        serialSeen = false;
        uniqueDirOrPrefix = false;
        return false;
    }
    return true;
}

bool rig_filter_t::uniqueDirOrPrefix() const
{
    bool serialSeen = false;
    bool unique = false;
    return verify(serialSeen, unique) && unique;
}

void rig_filter_t::clearBands()
{
    for (rig_camera_filter_t& camera : cameras) {
        camera.bands.clear();
    }
}

void rig_filter_t::cleanKeysInCameraFilters(RigKey key)
{
    for (rig_camera_filter_t& camera : cameras) {
        camera[key].clear();
    }
}

void rig_filter_t::clearExcept(RigKey kept)
{
    name.clear();
    for (const RigKey key : kRigKeys) {
        if (key != kept) {
            cleanKeysInCameraFilters(key);
        }
    }
    clearBands();
}

std::ostream& operator<<(std::ostream& out, const rig_filter_t& filter)
{
    out << "filter for rig name=" << filter.name.toStdString()
        << ", detection=" << text::toString(filter.detection).toStdString() << ", "
        << filter.cameras.size() << " cameras=[";
    for (const rig_camera_filter_t& camera : filter.cameras) {
        out << ' ' << camera;
    }
    return out << " ]";
}

} // namespace lumo
