// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_source.h"
#include "lumo/camerageometry/rig_enums.h"
#include "lumo/core/cameraInfo/rig_camera.h"
#include "lumo/core/cameraInfo/rig_relatives.h"
#include "lumo/core/export.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumo {

struct rig_filter_t;

/// Cameras that are triggered together: a reference camera, and secondary
/// cameras with their poses relative to it.
///
/// Cameras are numbered 0..cameraCount()-1. Number `refCameraIndex` is the
/// reference camera; those before it are secondaries[i], those after it
/// secondaries[i-1]. Moving the reference camera renumbers none.
///
/// A value; const calls may run in parallel. Instantiated for
/// RigModelCameraAttr only.
template <typename Attr>
class RigImpl
{
public:
    /// A camera other than the reference camera, with its pose relative to that.
    struct Secondary
    {
        Attr attributes;
        rig_relatives_t relatives;

        /// The poses within the tolerance of rig_relatives_t.
        bool operator==(const Secondary&) const = default;
    };

    QString name; ///< the key in the database
    RigSecondaryProcType processingMode = RigSecondaryProcType::OptRotRel;
    /// Whether (1) or not (0) processing may adjust the reference camera.
    std::uint32_t adjustRefCamera = 1;
    RigCameraDetection cameraDetection;
    std::uint64_t refCameraIndex = 0; ///< < cameraCount(), see attr()
    Attr refCamera;
    std::vector<Secondary> secondaries;
    CameraSource source = CameraSource::Custom; ///< where the model came from

    explicit RigImpl(
        const QString& rigName = QString(),
        RigCameraDetection detection = RigCameraDetection::ByCameraOrder);
    RigImpl(const RigImpl&) = default;
    RigImpl(RigImpl&&) noexcept = default;
    RigImpl& operator=(const RigImpl&) = default;
    RigImpl& operator=(RigImpl&&) noexcept = default;
    virtual ~RigImpl();

    [[nodiscard]] std::size_t cameraCount() const { return secondaries.size() + 1; }

    /// Camera i; i < cameraCount().
    /// \throws std::out_of_range if there is no such camera. If refCameraIndex is
    ///     not a camera of the rig, the last number throws as well. The
    ///     operations on camera numbers below do not check refCameraIndex either.
    [[nodiscard]] Attr& attr(std::size_t i);
    [[nodiscard]] const Attr& attr(std::size_t i) const;
    [[nodiscard]] bool cameraEnabled(std::size_t i) const { return attr(i).enabled(); }

    [[nodiscard]] std::size_t enabledCameraCount() const;
    /// The number of enabled cameras among 0..i, less one; for a disabled
    /// camera the position of the last enabled one before it.
    /// \returns size_t(-1) if none of 0..i is enabled or i is not a camera
    [[nodiscard]] std::size_t enabledCameraIndex(std::size_t i) const;
    /// The position of camera i in `secondaries`.
    /// \returns size_t(-1) for the reference camera and if i is not a camera
    [[nodiscard]] std::size_t secCameraIndex(std::size_t i) const;
    [[nodiscard]] bool hasDisabledCamera() const;

    /// Same number of cameras and same reference camera; secondaries enabled in
    /// this rig are enabled in the other and have equal poses. Not symmetric:
    /// the other may have more cameras enabled.
    [[nodiscard]] bool sameLayout(const RigImpl& other) const;
    /// All fields but `source`, poses within the tolerance of rig_relatives_t.
    [[nodiscard]] bool equal(const RigImpl& other) const;
    /// equal(), and the same source.
    [[nodiscard]] bool operator==(const RigImpl& other) const;

    /// Swaps the attributes, not the poses, of two cameras.
    /// \returns false, with nothing changed, if i == j or one is not a camera
    [[nodiscard]] bool exchangeAttrs(std::size_t i, std::size_t j);

    /// Makes camera k the reference camera and expresses all poses relative to it.
    /// Every camera keeps its number and attributes. All tolerances become
    /// rig_relatives_t::kDefaultTolerance, because a tolerance relative to the old
    /// reference camera cannot be converted.
    ///
    /// Going to k and back restores the poses if their angles are within the
    /// ranges that rig_relatives_t::setRotation gives. Otherwise, and at gimbal
    /// lock (rotY at +-90 degrees), it restores the rotations but not each of
    /// their angles, so that the relatives may compare different.
    /// \returns false, with nothing changed, if k is the reference camera, is
    ///     not a camera or is disabled
    [[nodiscard]] bool changeRefCamera(std::size_t k);
};

extern template class LUMO_CORE_EXPORT RigImpl<RigModelCameraAttr>;

/// A rig as the camera database stores it.
class LUMO_CORE_EXPORT RigModel : public RigImpl<RigModelCameraAttr>
{
public:
    explicit RigModel(
        const QString& rigName = QString(),
        RigCameraDetection detection = RigCameraDetection::ByCameraOrder)
        : RigImpl(rigName, detection)
    {}

    [[nodiscard]] bands_t& bands(std::size_t i) { return attr(i).filter().bands; }
    [[nodiscard]] const bands_t& bands(std::size_t i) const { return attr(i).bands(); }

    /// It has a name, and validData().
    [[nodiscard]] bool valid() const;
    /// At least two cameras, two of them enabled; refCameraIndex is a camera;
    /// every enabled camera has an EXIF string.
    [[nodiscard]] bool validData() const;
    /// Some enabled camera has a serial number.
    [[nodiscard]] bool serialNumberAvail() const;
    /// Same number of cameras, and each that is enabled in this rig is enabled
    /// in the other and has the same name, ignoring case.
    [[nodiscard]] bool sameCameraNames(const RigModel& other) const;
    /// The serial number or EXIF string that all cameras share, enabled or not.
    /// Empty if they differ; always empty for the detection string.
    [[nodiscard]] QString commonMatchString(RigKey key) const;

    /// Takes over which cameras are enabled.
    /// \returns false, with nothing changed, if the filter has not exactly the
    ///     rig's number of cameras
    [[nodiscard]] bool enableCameras(const rig_filter_t& filter);

    /// Takes over name, reference camera, processing and poses (with their
    /// tolerances), but keeps the cameras' attributes and the source. The pose of
    /// a secondary that is enabled here and disabled in `other` is kept.
    /// \returns false, with nothing changed, unless both have the same number of
    ///     cameras and the same detection, and the other's reference camera is
    ///     enabled here
    [[nodiscard]] bool replaceMainData(const RigModel& other);

    /// Brings the camera attributes into the order that fits the filter (those
    /// of camera p go to the camera that rigdb::matchRigDB assigns to filter
    /// camera p), then replaceMainData(other). If this rig does not fit the
    /// filter, or the filter has no cameras, the result is `other` itself.
    /// \returns false if only the order of the attributes could be changed
    [[nodiscard]] bool reorderAndReplace(const rig_filter_t& filter, const RigModel& other);

    /// Whether camera i fits a camera filter. Strings compare ignoring case.
    /// EXIF strings must be equal, also when empty; serial numbers and detection
    /// strings if asked for and the filter has one; bands, if asked for and both
    /// have some, in their central wavelengths.
    [[nodiscard]] bool attrMatched(
        std::size_t i, const rig_camera_filter_t& filter, bool useSerial, bool useDetection,
        bool useBands) const;

    /// Makes a filter that this rig fits. Detection strings are included only if the
    /// rig's cameras are distinguished by them, bands only with `withBands`. For a
    /// rig of a single camera the filter has one camera of which nothing is known.
    [[nodiscard]] rig_filter_t makeRigFilter(bool withBands) const;
    /// Makes a filter with one key of each camera. The key is included for every
    /// rig: RigKey::DetectionString gives the detection strings of any rig.
    [[nodiscard]] rig_filter_t makeRigFilter(RigKey key) const;

    /// A rig of the filter's cameras: no camera names, all at the pose of the
    /// reference camera, which is camera 0. A filter of fewer than two cameras
    /// gives its name and detection only.
    [[nodiscard]] static RigModel makeRigModel(const rig_filter_t& filter);
};

} // namespace lumo
