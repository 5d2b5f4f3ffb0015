// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_from_captures.h"

#include "cameraInfo/captures/image_name.h"
#include "cameraInfo/rig/rig_signature.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_db_match.h"
#include "lumo/core/cameraInfo/rig_identification.h"

#include <algorithm>

namespace lumo {
namespace {

/// The filter of a capture with what a rig model needs beyond it.
rig_filter_t cameraFilter(
    const Capture& capture, const CameraModelDb& database, const QString& name)
{
    rig_filter_t filter = makeCaptureFilter(capture, database);
    filter.name = name;
    for (std::size_t i = 0; i < capture.images.size(); ++i) {
        const ExifInfo& exif = capture.images[i].exif();
        if (!exif.bandsNamed && !exif.rigCameraIndex) {
            filter.cameras[i][RigKey::DetectionString] =
                splitImageName(capture.images[i].path()).end;
        }
    }
    return filter;
}

/// The position in the capture of the image from the reference camera.
std::size_t referenceImage(const Capture& capture)
{
    for (const InputImage& image : capture.images) {
        const std::optional<int> reference = image.exif().rigReferenceIndex;
        for (std::size_t i = 0; reference && i < capture.images.size(); ++i) {
            if (capture.images[i].exif().rigCameraIndex == reference) {
                return i;
            }
        }
    }
    return 0;
}

RigModel makeRig(const Capture& capture, const rig_filter_t& filter)
{
    RigModel rig = RigModel::makeRigModel(filter);
    rig.refCameraIndex = referenceImage(capture);
    for (std::size_t i = 0; i < filter.cameras.size(); ++i) {
        RigModelCameraAttr& camera = rig.attr(i);
        camera.filter() = filter.cameras[i];
        camera.name = camera.bands().names().join(QLatin1Char('/'));
        const std::optional<std::array<double, 3>> angles = capture.images[i].exif().rigRelatives;
        if (angles && i != rig.refCameraIndex) {
            rig_relatives_t& pose = rig.secondaries[rig.secCameraIndex(i)].relatives;
            pose.rotX = (*angles)[0];
            pose.rotY = (*angles)[1];
            pose.rotZ = (*angles)[2];
        }
    }
    return rig;
}

/// Whether the matcher cannot distinguish two cameras: they have the same
/// properties, or the same detection string, which it refuses whatever else differs.
bool ambiguous(const rig_filter_t& filter)
{
    rigdb::SignatureMaker makeSignature;
    std::vector<rigdb::Signature> cameras;
    for (const rig_camera_filter_t& camera : filter.cameras) {
        cameras.push_back(makeSignature(camera));
    }
    const bool repeated = rigdb::repeatedDetectionString(cameras);
    std::sort(cameras.begin(), cameras.end());
    return repeated || std::adjacent_find(cameras.begin(), cameras.end()) != cameras.end();
}

} // namespace

bool makeRigFromCaptures(
    const std::vector<Capture>& captures, const CameraModelDb& database, const QString& name,
    RigModel& rig, QString& error)
{
    const auto largest =
        std::max_element(captures.begin(), captures.end(), [](const Capture& a, const Capture& b) {
            return a.images.size() < b.images.size();
        });
    if (largest == captures.end() || largest->images.size() < 2) {
        error = QStringLiteral("no capture has two images or more");
        return false;
    }
    const rig_filter_t filter = cameraFilter(*largest, database, name);
    if (ambiguous(filter)) {
        error =
            QStringLiteral("two cameras of capture '%1' cannot be distinguished").arg(largest->id);
        return false;
    }
    const RigModel result = makeRig(*largest, filter);
    for (const Capture& capture : captures) {
        if (capture.images.size() == largest->images.size() &&
            !rigdb::matchRigDB(result, cameraFilter(capture, database, name), false).matched()) {
            error = QStringLiteral("captures '%1' and '%2' are not of one rig")
                        .arg(largest->id, capture.id);
            return false;
        }
    }
    if (!result.valid()) {
        error = QStringLiteral("capture '%1' makes no valid rig").arg(largest->id);
        return false;
    }
    rig = result;
    return true;
}

} // namespace lumo
