// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/rig_db_iterator.h"

#include "cameraInfo/store/rig_source.h"
#include "lumo/core/cameraInfo/camera_model_db.h"

#include <stdexcept>

namespace lumo {

RigDBIterator::RigDBIterator(const CameraModelDb& store)
    : m_user(store.userData().rigs)
    , m_internal(store.internalData().rigs)
    , m_nextUser(m_user.begin())
    , m_nextInternal(m_internal.begin())
{}

bool RigDBIterator::hasNext() const
{
    return m_nextUser != m_user.end() || m_nextInternal != m_internal.end();
}

RigDBIterator::Item RigDBIterator::next()
{
    if (m_nextUser != m_user.end()) {
        const auto& [name, rig] = *m_nextUser++;
        return {rig, userRigSource(m_internal.contains(name))};
    }
    if (m_nextInternal != m_internal.end()) {
        return {(m_nextInternal++)->second, CameraSource::InternalDatabase};
    }
    throw std::runtime_error(
        "Cannot call RigDBIterator::next(). The iterator is pointing at the end.");
}

} // namespace lumo
