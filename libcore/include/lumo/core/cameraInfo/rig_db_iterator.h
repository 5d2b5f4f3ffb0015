// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/camera_source.h"
#include "lumo/core/cameraInfo/rig_model.h"
#include "lumo/core/export.h"

#include <QString>

#include <map>

namespace lumo {

class CameraModelDb;

/// Walks all rig models of a store: the user's, then the internal ones, each in
/// the order of their names. An internal rig that a user's overrides is visited
/// too. The store must outlive the iterator and keep its rigs meanwhile.
///
///     for (RigDBIterator rigs(store); rigs.hasNext();) {
///         const auto [rig, source] = rigs.next();
///     }
class LUMO_CORE_EXPORT RigDBIterator
{
public:
    /// A rig, and where it came from. Valid as long as the store keeps the rig.
    struct Item
    {
        const RigModel& rig; ///< the store's own; its `source` is as stored
        CameraSource source; ///< as CameraModelDb::findRigModel gives it
    };

    explicit RigDBIterator(const CameraModelDb& store);

    [[nodiscard]] bool hasNext() const;
    /// \throws std::runtime_error at the end
    Item next();

private:
    using Rigs = std::map<QString, RigModel>;

    const Rigs& m_user;
    const Rigs& m_internal;
    Rigs::const_iterator m_nextUser;
    Rigs::const_iterator m_nextInternal;
};

} // namespace lumo
