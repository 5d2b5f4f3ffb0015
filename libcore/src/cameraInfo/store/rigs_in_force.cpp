// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/store/rigs_in_force.h"

#include "lumo/core/cameraInfo/camera_model_db.h"

namespace lumo {

std::vector<RigDBIterator::Item> rigsInForce(const CameraModelDb& store)
{
    std::vector<RigDBIterator::Item> items;
    for (RigDBIterator rigs(store); rigs.hasNext();) {
        const RigDBIterator::Item item = rigs.next();
        const bool overridden = item.source == CameraSource::InternalDatabase &&
                                store.userData().rigs.contains(item.rig.name);
        if (!overridden) {
            items.push_back(item);
        }
    }
    return items;
}

} // namespace lumo
