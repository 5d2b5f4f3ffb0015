// SPDX-License-Identifier: Apache-2.0
// CameraModelDb: finding and changing rigs.
#include "cameraInfo/store/rig_source.h"
#include "cameraInfo/store/rigs_in_force.h"
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_db_match.h"

#include <algorithm>
#include <utility>

namespace lumo {
namespace {

using rigdb::matchRigDB;
using rigdb::RigDBMatch;

using Rigs = std::map<QString, RigModel>;

/// A rig of the store; null if there is none.
struct StoredRig
{
    const RigModel* rig = nullptr;
    CameraSource source = CameraSource::Custom;
};

const RigModel* find(const Rigs& rigs, const QString& name)
{
    const auto entry = name.isEmpty() ? rigs.end() : rigs.find(name);
    return entry == rigs.end() ? nullptr : &entry->second;
}

/// The user's rig of that name, else the internal one.
StoredRig find(const Rigs& userRigs, const Rigs& internalRigs, const QString& name)
{
    const RigModel* user = find(userRigs, name);
    const RigModel* internal = find(internalRigs, name);
    if (user != nullptr) {
        return {user, userRigSource(internal != nullptr)};
    }
    return {internal, CameraSource::InternalDatabase};
}

/// Whether `rig` is the stored one. Cameras disabled in `rig` may be anything
/// in the stored one: a set of images without them is still of that rig.
bool sameAsStored(const RigModel& rig, const RigModel& stored)
{
    return rig.processingMode == stored.processingMode &&
           rig.adjustRefCamera == stored.adjustRefCamera && rig.sameLayout(stored) &&
           rig.sameCameraNames(stored) &&
           matchRigDB(stored, rig.makeRigFilter(false), true).matched();
}

struct Candidate
{
    StoredRig stored;
    RigDBMatch match{-1, {}, false};
};

/// The best of the store's rigs in force and `best`; of equal ones the last.
void scan(const CameraModelDb& store, const rig_filter_t& filter, Candidate& best)
{
    for (const auto& [rig, source] : rigsInForce(store)) {
        RigDBMatch match = matchRigDB(rig, filter, false);
        if (match.matched() && best.match <= match) {
            best = {{&rig, source}, std::move(match)};
        }
    }
}

} // namespace

bool CameraModelDb::containsRigModel(const QString& name, bool internalOnly) const
{
    return (!internalOnly && find(m_user.rigs, name) != nullptr) ||
           find(m_internal.rigs, name) != nullptr;
}

bool CameraModelDb::findRigModel(const QString& name, RigModel& rig, bool internalOnly) const
{
    const StoredRig stored =
        internalOnly ? StoredRig{find(m_internal.rigs, name), CameraSource::InternalDatabase}
                     : find(m_user.rigs, m_internal.rigs, name);
    if (stored.rig == nullptr) {
        return false;
    }
    rig = *stored.rig;
    rig.source = stored.source;
    return true;
}

bool CameraModelDb::findBestRigModel(const rig_filter_t& filter, RigModel& rig) const
{
    if (filter.empty()) {
        return false;
    }
    const bool serialAvail = filter.serialNumberAvail();
    Candidate best;
    best.stored = find(m_user.rigs, m_internal.rigs, filter.name);
    if (best.stored.rig != nullptr) {
        best.match = matchRigDB(*best.stored.rig, filter, false);
    }
    const bool namedRigSuffices =
        best.match.matched() && (best.match.serialMatched || !serialAvail);
    // Only the serial numbers of the images can overrule a rig that was named.
    if (!namedRigSuffices && (filter.name.isEmpty() || serialAvail)) {
        scan(*this, filter, best);
    }
    if (best.stored.rig == nullptr || !best.match.matched()) {
        return false;
    }
    rig = *best.stored.rig;
    rig.source = best.stored.source;
    return true;
}

void CameraModelDb::rigNamesWithScore(
    const rig_filter_t& filter, std::vector<std::pair<QString, int>>& names) const
{
    std::vector<std::pair<QString, RigDBMatch>> fitting;
    for (const auto& [rig, source] : rigsInForce(*this)) {
        RigDBMatch match = matchRigDB(rig, filter, false);
        if (match.matched()) {
            fitting.emplace_back(rig.name, std::move(match));
        }
    }
    // Of equally good rigs the last comes first, as findBestRigModel takes it.
    std::reverse(fitting.begin(), fitting.end());
    std::stable_sort(fitting.begin(), fitting.end(), [](const auto& a, const auto& b) {
        return b.second < a.second;
    });
    names.clear();
    for (const auto& [name, match] : fitting) {
        names.emplace_back(name, match.score);
    }
}

CameraSource CameraModelDb::calcRigSource(const RigModel& rig) const
{
    const StoredRig stored = find(m_user.rigs, m_internal.rigs, rig.name);
    return stored.rig != nullptr && rig.refCameraIndex < rig.cameraCount() &&
                   sameAsStored(rig, *stored.rig)
               ? stored.source
               : CameraSource::Custom;
}

bool CameraModelDb::setRigModel(const RigModel& rig, bool save)
{
    if (!editingAllowed() || !rig.valid()) {
        return false;
    }
    const RigModel* internal = find(m_internal.rigs, rig.name);
    if (internal != nullptr && internal->equal(rig)) {
        // A user's rig equal to the internal one would hide later corrections of that.
        if (m_user.rigs.erase(rig.name) == 0) {
            return false;
        }
    } else {
        const RigModel* held = find(m_user.rigs, rig.name);
        if (held != nullptr && held->equal(rig)) {
            return false;
        }
        RigModel stored = rig;
        stored.source = userRigSource(internal != nullptr);
        m_user.rigs.insert_or_assign(rig.name, std::move(stored));
    }
    return !save || saveUserDb();
}

bool CameraModelDb::removeRigModel(const QString& name, bool save)
{
    if (!editingAllowed() || name.isEmpty() || m_user.rigs.erase(name) == 0) {
        return false;
    }
    return !save || saveUserDb();
}

} // namespace lumo
