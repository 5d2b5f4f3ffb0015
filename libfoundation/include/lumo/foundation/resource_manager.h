// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/foundation/export.h"

#include <mutex>

namespace lumo {

/// Counts the users of a resource that is switched on for the first user and off
/// after the last, such as the suppression of power saving.
///
/// The derived class stores the count (readState, writeState), so that the count
/// can outlive the manager. `acquire` and `release` may be called from any thread;
/// the four private functions are never called by two threads at once.
class LUMO_FOUNDATION_EXPORT ResourceManager
{
public:
    ResourceManager();
    ResourceManager(const ResourceManager&) = delete;
    ResourceManager& operator=(const ResourceManager&) = delete;
    virtual ~ResourceManager();

    /// Adds a user; calls `onFirstAcquired` for the first.
    /// \throws what `onFirstAcquired` throws; no user is added then
    void acquire();
    /// Removes a user; calls `onLastReleased` after the last.
    /// \throws std::logic_error if there is no user
    /// \throws what `onLastReleased` throws; the user is removed all the same
    void release();

private:
    [[nodiscard]] virtual unsigned readState() const = 0;
    virtual void writeState(unsigned holders) = 0;
    virtual void onFirstAcquired() = 0;
    virtual void onLastReleased() = 0;

    std::mutex m_mutex;
};

/// Uses a ResourceManager's resource during its lifetime: acquires on construction,
/// releases on destruction. Any number may exist at once, and a copy counts as one
/// more user. The manager must outlive them all. Logs a warning if the release fails.
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
