// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/resource_manager.h"

#include "lumo/foundation/log.h"

#include <exception>
#include <stdexcept>

namespace lumo {

ResourceManager::ResourceManager() = default;
ResourceManager::~ResourceManager() = default;

void ResourceManager::acquire()
{
    const std::lock_guard lock(m_mutex);
    const unsigned holders = readState();
    if (holders == 0) {
        onFirstAcquired();
    }
    writeState(holders + 1);
}

void ResourceManager::release()
{
    const std::lock_guard lock(m_mutex);
    const unsigned holders = readState();
    if (holders == 0) {
        throw std::logic_error("ResourceManager::release: it was not acquired");
    }
    writeState(holders - 1);
    if (holders == 1) {
        onLastReleased();
    }
}

RecursiveResource::RecursiveResource(ResourceManager& manager)
    : m_manager(manager)
{
    m_manager.acquire();
}

RecursiveResource::RecursiveResource(const RecursiveResource& other)
    : RecursiveResource(other.m_manager)
{}

RecursiveResource::~RecursiveResource()
{
    try {
        m_manager.release();
    } catch (const std::exception& failure) {
        log::warning() << "Unable to release a resource:" << failure.what();
    }
}

} // namespace lumo
