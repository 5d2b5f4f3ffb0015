// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <mutex>

namespace lumo {

/// Counts the holders of something that is switched on for the first holder
/// and off after the last, such as the suppression of power saving.
///
/// The count lives in a state word that the derived class keeps, so that it
/// may outlive the manager. `acquire` and `release` may be called from any
/// thread; the four private operations run one at a time.
class LUMO_FOUNDATION_EXPORT ResourceManager
{
public:
    ResourceManager();
    ResourceManager(const ResourceManager&) = delete;
    ResourceManager& operator=(const ResourceManager&) = delete;
    virtual ~ResourceManager();

    /// \throws what `onFirstAcquired` throws; there is then no new holder
    void acquire();
    /// \throws std::logic_error if there is no holder
    /// \throws what `onLastReleased` throws; the holder is gone all the same
    void release();

private:
    [[nodiscard]] virtual unsigned readState() const = 0;
    virtual void writeState(unsigned holders) = 0;
    virtual void onFirstAcquired() = 0;
    virtual void onLastReleased() = 0;

    std::mutex m_mutex;
};

/// Holds a ResourceManager's resource while it lives; holders may nest. The
/// manager must outlive it. A copy is a holder of its own. A release that fails
/// is logged as a warning.
class LUMO_FOUNDATION_EXPORT RecursiveResource
{
public:
    explicit RecursiveResource(ResourceManager& manager);
    RecursiveResource(const RecursiveResource& other);
    RecursiveResource& operator=(const RecursiveResource&) = delete;
    virtual ~RecursiveResource();

private:
    ResourceManager& m_manager;
};

} // namespace lumo
