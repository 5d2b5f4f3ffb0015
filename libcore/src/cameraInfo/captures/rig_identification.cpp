// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_identification.h"

#include "cameraInfo/captures/rig_mismatch.h"
#include "cameraInfo/store/rigs_in_force.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_db_match.h"
#include "lumo/foundation/file.h"
#include "lumo/foundation/text.h"

#include <QFileInfo>

#include <algorithm>

namespace lumo {
namespace {

/// The rigs of a store, which own them.
using Rigs = std::vector<const RigModel*>;

/// Only valid rigs: an application may have set others, which no file contains.
Rigs rigsOf(const CameraModelDb& database)
{
    Rigs rigs;
    for (const RigDBIterator::Item& item : rigsInForce(database)) {
        if (item.rig.valid()) {
            rigs.push_back(&item.rig);
        }
    }
    return rigs;
}

/// Whether a file's name ends or begins with the text, or it lies in a folder of
/// that name.
bool detects(const QString& detectionString, const QString& path)
{
    const QString name = QFileInfo(path).completeBaseName();
    return name.endsWith(detectionString, Qt::CaseInsensitive) ||
           name.startsWith(detectionString, Qt::CaseInsensitive) ||
           text::iequals(file::filename(file::dirname(path)), detectionString);
}

/// The longest detection string that a rig lists for such a camera and that the
/// file has.
QString findDetectionString(const Rigs& rigs, const QString& exifString, const QString& path)
{
    QString longest;
    for (const RigModel* rig : rigs) {
        for (std::size_t i = 0; i < rig->cameraCount(); ++i) {
            const RigModelCameraAttr& camera = rig->attr(i);
            const QString& listed = camera[RigKey::DetectionString];
            if (listed.size() > longest.size() &&
                text::iequals(camera[RigKey::ExifString], exifString) && detects(listed, path)) {
                longest = listed;
            }
        }
    }
    return longest;
}

QStringList fileNames(const Capture& capture)
{
    QStringList names;
    for (const InputImage& image : capture.images) {
        names.append(file::filename(image.path()));
    }
    return names;
}

QStringList cameraNames(const RigModel& rig)
{
    QStringList names;
    for (std::size_t i = 0; i < rig.cameraCount(); ++i) {
        names.append(rigCameraText(rig, i));
    }
    return names;
}

/// Changes a capture's filter for rigs whose cameras are distinguished by their order;
/// these rigs list no detection strings.
rig_filter_t inOrder(rig_filter_t filter)
{
    filter.detection = RigCameraDetection::ByCameraOrder;
    filter.cleanKeysInCameraFilters(RigKey::DetectionString);
    return filter;
}

/// The nearest rig, and what keeps the nearest ones from fitting.
RigIdentification explain(
    const CameraModelDb& database, const rig_filter_t& filter, const QStringList& files)
{
    constexpr std::size_t kMost = 3; // more reasons would hide the useful ones
    const rig_filter_t ordered = inOrder(filter);
    std::vector<std::pair<const RigModel*, RigMismatch>> mismatches;
    for (const RigModel* rig : rigsOf(database)) {
        const bool byOrder = rig->cameraDetection != RigCameraDetection::ByDetectionString;
        RigMismatch mismatch = explainMismatch(*rig, byOrder ? ordered : filter, files);
        if (mismatch.fitting > 0) {
            mismatches.emplace_back(rig, std::move(mismatch));
        }
    }
    std::stable_sort(mismatches.begin(), mismatches.end(), [](const auto& a, const auto& b) {
        return a.second.fitting != b.second.fitting ? a.second.fitting > b.second.fitting
                                                    : a.second.missing < b.second.missing;
    });
    mismatches.resize(std::min(mismatches.size(), kMost));
    RigIdentification result;
    for (const auto& [rig, mismatch] : mismatches) {
        result.reasons.append(mismatch.text);
    }
    if (mismatches.empty()) {
        result.reasons.append(QStringLiteral("no rig has a camera of this kind"));
        result.assignment.assign(filter.cameras.size(), npos);
        return result;
    }
    const RigModel& nearest = *mismatches.front().first;
    result.rigName = nearest.name;
    result.cameraNames = cameraNames(nearest);
    result.assignment = mismatches.front().second.assignment;
    return result;
}

/// The best rig for a capture. A rig by camera order must score higher than all rigs by
/// detection string.
/// \param[out] rig  untouched if none fits
rigdb::RigDBMatch findBest(const CameraModelDb& database, const rig_filter_t& filter, RigModel& rig)
{
    rigdb::RigDBMatch best{-1, {}, false};
    for (const rig_filter_t& each : {filter, inOrder(filter)}) {
        RigModel found;
        if (database.findBestRigModel(each, found)) {
            rigdb::RigDBMatch match = rigdb::matchRigDB(found, each, false);
            if (match.score > best.score) {
                best = std::move(match);
                rig = std::move(found);
            }
        }
    }
    return best;
}

/// The rig that fits the filter of a capture.
RigIdentification identifyRig(
    const Capture& capture, const rig_filter_t& filter, const CameraModelDb& database)
{
    RigModel rig;
    rigdb::RigDBMatch match{-1, {}, false};
    // A single image would fit the first camera of many rigs.
    if (capture.images.size() > 1) {
        match = findBest(database, filter, rig);
    }
    if (!match.matched()) {
        return explain(database, filter, fileNames(capture));
    }
    RigIdentification result;
    result.fits = true;
    result.rigName = rig.name;
    result.source = rig.source;
    result.cameraNames = cameraNames(rig);
    result.assignment = match.assignment;
    result.score = match.score;
    result.serialMatched = match.serialMatched;
    return result;
}

} // namespace

rig_filter_t makeCaptureFilter(const Capture& capture, const CameraModelDb& database)
{
    const Rigs rigs = rigsOf(database);
    rig_filter_t filter(capture.images.size(), QString(), RigCameraDetection::ByDetectionString);
    for (std::size_t i = 0; i < capture.images.size(); ++i) {
        const ExifInfo& exif = capture.images[i].exif();
        rig_camera_filter_t& camera = filter.cameras[i];
        const QString model = database.exifId2cameraName(exif.exifId(), false);
        camera[RigKey::ExifString] = model.isEmpty() ? exif.exifId().first : model;
        camera[RigKey::SerialNumber] = exif.serialNumber;
        if (exif.bandsNamed) {
            camera.bands = exif.bands;
        }
        if (!exif.bandsNamed && !exif.rigCameraIndex) {
            camera[RigKey::DetectionString] =
                findDetectionString(rigs, camera[RigKey::ExifString], capture.images[i].path());
        }
    }
    return filter;
}

std::vector<RigIdentification> identifyRigs(
    const std::vector<Capture>& captures, const CameraModelDb& database)
{
    std::vector<RigIdentification> results;
    std::vector<std::pair<rig_filter_t, RigIdentification>> found;
    for (const Capture& capture : captures) {
        const rig_filter_t filter = makeCaptureFilter(capture, database);
        const auto known = std::find_if(found.begin(), found.end(), [&filter](const auto& entry) {
            return entry.first == filter;
        });
        if (known != found.end()) {
            results.push_back(known->second);
            continue;
        }
        results.push_back(identifyRig(capture, filter, database));
        // Reasons of a mismatch name the files, so they cannot be reused.
        if (results.back().fits) {
            found.emplace_back(filter, results.back());
        }
    }
    return results;
}

} // namespace lumo
