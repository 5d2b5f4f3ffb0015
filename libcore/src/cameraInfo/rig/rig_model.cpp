// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_model.h"

#include "lumo/foundation/text.h"

#include <algorithm>

namespace lumo {
namespace {

/// Whether `holds` is true for the attributes of every enabled camera.
template <typename Predicate>
bool allEnabled(const RigModel& rig, Predicate holds)
{
    const auto fits = [&holds](const RigModelCameraAttr& attributes) {
        return !attributes.enabled() || holds(attributes);
    };
    return fits(rig.refCamera) && std::all_of(
                                      rig.secondaries.begin(), rig.secondaries.end(),
                                      [&fits](const RigModel::Secondary& secondary) {
                                          return fits(secondary.attributes);
                                      });
}

} // namespace

bool RigModel::valid() const
{
    return !name.isEmpty() && validData();
}

bool RigModel::validData() const
{
    return !secondaries.empty() && refCameraIndex < cameraCount() && enabledCameraCount() > 1 &&
           allEnabled(*this, [](const RigModelCameraAttr& camera) {
               return !camera[RigKey::ExifString].isEmpty();
           });
}

bool RigModel::serialNumberAvail() const
{
    return !allEnabled(*this, [](const RigModelCameraAttr& camera) {
        return camera[RigKey::SerialNumber].isEmpty();
    });
}

bool RigModel::sameCameraNames(const RigModel& other) const
{
    if (cameraCount() != other.cameraCount()) {
        return false;
    }
    for (std::size_t i = 0; i < cameraCount(); ++i) {
        const RigModelCameraAttr& own = attr(i);
        const RigModelCameraAttr& others = other.attr(i);
        if (own.enabled() && !(others.enabled() && text::iequals(own.name, others.name))) {
            return false;
        }
    }
    return true;
}

QString RigModel::commonMatchString(RigKey key) const
{
    if (key != RigKey::SerialNumber && key != RigKey::ExifString) {
        return {};
    }
    const QString& common = refCamera[key];
    const bool shared = std::all_of(
        secondaries.begin(), secondaries.end(),
        [&common, key](const Secondary& secondary) { return secondary.attributes[key] == common; });
    return shared ? common : QString();
}

bool RigModel::replaceMainData(const RigModel& other)
{
    if (cameraCount() != other.cameraCount() || cameraDetection != other.cameraDetection) {
        return false;
    }
    if (refCameraIndex != other.refCameraIndex && !changeRefCamera(other.refCameraIndex)) {
        return false;
    }
    name = other.name;
    processingMode = other.processingMode;
    adjustRefCamera = other.adjustRefCamera;
    for (std::size_t slot = 0; slot < secondaries.size(); ++slot) {
        const Secondary& others = other.secondaries[slot];
        if (others.attributes.enabled() || !secondaries[slot].attributes.enabled()) {
            secondaries[slot].relatives = others.relatives;
        }
    }
    return true;
}

} // namespace lumo
