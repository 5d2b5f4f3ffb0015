// SPDX-License-Identifier: Apache-2.0
// RigImpl: access to the cameras and their order.
#include "lumo/core/cameraInfo/rig_model.h"

#include <algorithm>
#include <utility>

namespace lumo {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

struct Pose
{
    RotationMatrix rotation;
    Eigen::Vector3d position = Eigen::Vector3d::Zero();
};

/// The poses of all cameras, by number, relative to the reference camera.
template <typename Attr>
std::vector<Pose> posesOf(const RigImpl<Attr>& rig)
{
    std::vector<Pose> poses;
    for (const auto& secondary : rig.secondaries) {
        poses.push_back({secondary.relatives.rotationMatrix(), secondary.relatives.transl});
    }
    poses.insert(poses.begin() + static_cast<std::ptrdiff_t>(rig.refCameraIndex), Pose());
    return poses;
}

} // namespace

template <typename Attr>
RigImpl<Attr>::RigImpl(const QString& rigName, RigCameraDetection detection)
    : name(rigName)
    , cameraDetection(detection)
{}

template <typename Attr>
RigImpl<Attr>::~RigImpl() = default;

template <typename Attr>
const Attr& RigImpl<Attr>::attr(std::size_t i) const
{
    if (i == refCameraIndex && i < cameraCount()) {
        return refCamera;
    }
    return secondaries.at(i < refCameraIndex ? i : i - 1).attributes;
}

template <typename Attr>
Attr& RigImpl<Attr>::attr(std::size_t i)
{
    return const_cast<Attr&>(std::as_const(*this).attr(i));
}

template <typename Attr>
std::size_t RigImpl<Attr>::enabledCameraCount() const
{
    const auto enabled = [](const Secondary& secondary) { return secondary.attributes.enabled(); };
    const auto count = std::count_if(secondaries.begin(), secondaries.end(), enabled);
    return static_cast<std::size_t>(count) + (refCamera.enabled() ? 1U : 0U);
}

template <typename Attr>
std::size_t RigImpl<Attr>::enabledCameraIndex(std::size_t i) const
{
    if (i >= cameraCount()) {
        return kNone;
    }
    std::size_t count = 0;
    for (std::size_t camera = 0; camera <= i; ++camera) {
        count += cameraEnabled(camera) ? 1U : 0U;
    }
    return count == 0 ? kNone : count - 1;
}

template <typename Attr>
std::size_t RigImpl<Attr>::secCameraIndex(std::size_t i) const
{
    if (i < refCameraIndex) {
        return i;
    }
    return i > refCameraIndex && i - 1 < secondaries.size() ? i - 1 : kNone;
}

template <typename Attr>
bool RigImpl<Attr>::hasDisabledCamera() const
{
    return enabledCameraCount() < cameraCount();
}

template <typename Attr>
bool RigImpl<Attr>::sameLayout(const RigImpl& other) const
{
    const auto sameSlot = [](const Secondary& own, const Secondary& others) {
        return !own.attributes.enabled() ||
               (others.attributes.enabled() && own.relatives == others.relatives);
    };
    return refCameraIndex == other.refCameraIndex &&
           std::equal(
               secondaries.begin(), secondaries.end(), other.secondaries.begin(),
               other.secondaries.end(), sameSlot);
}

template <typename Attr>
bool RigImpl<Attr>::equal(const RigImpl& other) const
{
    return name == other.name && processingMode == other.processingMode &&
           adjustRefCamera == other.adjustRefCamera && cameraDetection == other.cameraDetection &&
           refCameraIndex == other.refCameraIndex && refCamera == other.refCamera &&
           secondaries == other.secondaries;
}

template <typename Attr>
bool RigImpl<Attr>::operator==(const RigImpl& other) const
{
    return equal(other) && source == other.source;
}

template <typename Attr>
bool RigImpl<Attr>::exchangeAttrs(std::size_t i, std::size_t j)
{
    if (i == j || i >= cameraCount() || j >= cameraCount()) {
        return false;
    }
    std::swap(attr(i), attr(j));
    return true;
}

template <typename Attr>
bool RigImpl<Attr>::changeRefCamera(std::size_t k)
{
    if (k == refCameraIndex || k >= cameraCount() || refCameraIndex >= cameraCount() ||
        !cameraEnabled(k)) {
        return false;
    }
    const std::vector<Pose> poses = posesOf(*this);
    std::vector<Attr> attributes;
    for (std::size_t camera = 0; camera < cameraCount(); ++camera) {
        attributes.push_back(std::move(attr(camera)));
    }

    refCameraIndex = k;
    const RotationMatrix newFromOld = poses[k].rotation.transpose();
    for (std::size_t camera = 0; camera < cameraCount(); ++camera) {
        attr(camera) = std::move(attributes[camera]);
        if (camera != k) {
            rig_relatives_t relatives; // with default tolerances
            relatives.setRotation(newFromOld * poses[camera].rotation);
            relatives.transl = newFromOld * (poses[camera].position - poses[k].position);
            secondaries[secCameraIndex(camera)].relatives = relatives;
        }
    }
    return true;
}

template class RigImpl<RigModelCameraAttr>;

} // namespace lumo
