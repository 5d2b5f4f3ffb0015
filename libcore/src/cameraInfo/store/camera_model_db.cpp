// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"

#include <utility>

namespace lumo {

CameraModelDb::CameraModelDb(const CameraDbSettings& settings)
    : m_settings(settings)
{}

void CameraModelDb::reset(const CameraDbSettings& settings)
{
    clear();
    m_settings = settings;
}

void CameraModelDb::clear()
{
    m_internal = {};
    m_user = {};
    m_userVersion = cameradb::kCurrentVersion;
}

void CameraModelDb::setInternalData(cameradb::CameraDBData data)
{
    m_internal = std::move(data);
}

bool CameraModelDb::setUserData(cameradb::CameraDBData data, std::size_t version)
{
    if (!m_userEnabled) {
        return false;
    }
    m_user = std::move(data);
    m_userVersion = m_user.empty() ? cameradb::kCurrentVersion : version;
    return true;
}

void CameraModelDb::setUserDBStatus(bool enabled)
{
    m_userEnabled = enabled;
    if (!enabled) {
        m_user = {};
        m_userVersion = cameradb::kCurrentVersion;
    }
}

bool CameraModelDb::emptyInternalDB() const
{
    return m_internal.cameras.empty() && m_internal.rigs.empty();
}

bool CameraModelDb::emptyUserDB() const
{
    return m_user.cameras.empty() && m_user.rigs.empty();
}

bool CameraModelDb::emptyDB() const
{
    return emptyInternalDB() && (!m_userEnabled || emptyUserDB());
}

} // namespace lumo
