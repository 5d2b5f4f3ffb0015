// SPDX-License-Identifier: Apache-2.0
// RigModel: making and applying rig filters.
#include "lumo/core/cameraInfo/rig_db_match.h"
#include "lumo/foundation/text.h"

#include <utility>

namespace lumo {
namespace {

/// A filter for the rig's cameras; `describe` makes the filter of each camera.
template <typename Describe>
rig_filter_t filterOf(const RigModel& rig, Describe describe)
{
    rig_filter_t filter(rig.cameraCount(), rig.name, rig.cameraDetection);
    if (rig.cameraCount() > 1) {
        for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
            filter.cameras[i].enabled = rig.cameraEnabled(i);
            describe(rig.attr(i), filter.cameras[i]);
        }
    }
    return filter;
}

/// Whether a key that the filter may leave open fits.
bool openKeyMatches(
    const rig_camera_filter_t& camera, const rig_camera_filter_t& filter, RigKey key)
{
    return filter[key].isEmpty() || text::iequals(camera[key], filter[key]);
}

} // namespace

rig_filter_t RigModel::makeRigFilter(bool withBands) const
{
    const bool withDetection = cameraDetection == RigCameraDetection::ByDetectionString;
    return filterOf(*this, [=](const RigModelCameraAttr& attributes, rig_camera_filter_t& camera) {
        camera[RigKey::SerialNumber] = attributes[RigKey::SerialNumber];
        camera[RigKey::ExifString] = attributes[RigKey::ExifString];
        if (withDetection) {
            camera[RigKey::DetectionString] = attributes[RigKey::DetectionString];
        }
        if (withBands) {
            camera.bands = attributes.bands();
        }
    });
}

rig_filter_t RigModel::makeRigFilter(RigKey key) const
{
    return filterOf(
        *this, [key](const RigModelCameraAttr& attributes, rig_camera_filter_t& camera) {
            camera[key] = attributes[key];
        });
}

RigModel RigModel::makeRigModel(const rig_filter_t& filter)
{
    RigModel rig(filter.name, filter.detection);
    if (filter.cameras.size() > 1) {
        rig.secondaries.resize(filter.cameras.size() - 1);
        for (std::size_t i = 0; i < filter.cameras.size(); ++i) {
            rig.attr(i).filter() = filter.cameras[i];
        }
    }
    return rig;
}

bool RigModel::enableCameras(const rig_filter_t& filter)
{
    if (filter.cameras.size() != cameraCount()) {
        return false;
    }
    for (std::size_t i = 0; i < cameraCount(); ++i) {
        attr(i).filter().enabled = filter.cameras[i].enabled;
    }
    return true;
}

bool RigModel::attrMatched(
    std::size_t i, const rig_camera_filter_t& filter, bool useSerial, bool useDetection,
    bool useBands) const
{
    const RigModelCameraAttr& camera = attr(i);
    if (useSerial && !openKeyMatches(camera, filter, RigKey::SerialNumber)) {
        return false;
    }
    if (!text::iequals(camera[RigKey::ExifString], filter[RigKey::ExifString])) {
        return false;
    }
    if (useDetection && !openKeyMatches(camera, filter, RigKey::DetectionString)) {
        return false;
    }
    return !useBands || camera.bands().empty() || filter.bands.empty() ||
           camera.bands().sameCentralWaveLengths(filter.bands);
}

bool RigModel::reorderAndReplace(const rig_filter_t& filter, const RigModel& other)
{
    const std::vector<std::size_t> assignment = rigdb::matchRigDB(*this, filter, false).assignment;
    if (assignment.empty()) {
        *this = other;
        return true;
    }
    std::vector<RigModelCameraAttr> attributes;
    for (std::size_t p = 0; p < assignment.size(); ++p) {
        attributes.push_back(attr(p));
    }
    for (std::size_t p = 0; p < assignment.size(); ++p) {
        attr(assignment[p]) = std::move(attributes[p]);
    }
    return replaceMainData(other);
}

} // namespace lumo
