// SPDX-License-Identifier: Apache-2.0
#include "lumo/processing/processing_blob.h"

#include "lumo/foundation/log.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <utility>

namespace lumo {

namespace {

using Clock = std::chrono::steady_clock;

int percentOf(unsigned long long current, unsigned long long total)
{
    if (total == 0) {
        return 0;
    }
    if (current >= total) {
        return 100;
    }
    // 100 * current must not overflow. For such a large total the lost remainder of the
    // division is far below one percent.
    constexpr auto kLargest = std::numeric_limits<unsigned long long>::max() / 100;
    const auto percent = total > kLargest ? current / (total / 100) : 100 * current / total;
    return static_cast<int>(std::min(percent, 99ULL));
}

/// The last report that listeners and log received.
struct PassedOn
{
    Progress progress;
    Clock::time_point when;
};

} // namespace

struct ProcessingBlob::Shared
{
    const Clock::duration interval;
    std::atomic<bool> stop = false; // not guarded by the mutex, so that listeners can use it
    mutable std::mutex mutex;       // guards all members below; locked while listeners are called
    Progress last;
    std::optional<PassedOn> passedOn; ///< none yet in this run
    std::map<ListenerId, Listener> listeners;
    ListenerId nextId = 0;

    explicit Shared(std::chrono::milliseconds shortest)
        : interval(shortest)
    {}

    [[nodiscard]] bool isDue(Clock::time_point now) const
    {
        if (!passedOn) {
            return true;
        }
        if (last == passedOn->progress) {
            return false;
        }
        // Otherwise a progress bar might stop short of 100 %.
        const bool completes = last.percent == 100 && passedOn->progress.percent < 100;
        return completes || now - passedOn->when >= interval;
    }
};

ProcessingBlob& ProcessingBlob::instance()
{
    static ProcessingBlob theOne;
    return theOne;
}

ProcessingBlob::ProcessingBlob(std::chrono::milliseconds interval)
    : m_shared(std::make_unique<Shared>(interval))
{}

ProcessingBlob::~ProcessingBlob() = default;

void ProcessingBlob::start()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->stop = false;
    m_shared->last = {};
    m_shared->passedOn.reset();
}

void ProcessingBlob::stop()
{
    m_shared->stop = true;
}

bool ProcessingBlob::shouldStop() const
{
    return m_shared->stop;
}

void ProcessingBlob::progress(int percent, const QString& text)
{
    // Before the lock: the time of the report, not of its turn.
    const Clock::time_point now = Clock::now();
    const std::lock_guard lock(m_shared->mutex);
    m_shared->last = {std::clamp(percent, 0, 100), text};
    if (!m_shared->isDue(now)) {
        return;
    }
    m_shared->passedOn = {m_shared->last, now};
    log::debug() << m_shared->last.percent << "%" << text;
    for (const auto& [id, listener] : m_shared->listeners) {
        listener(m_shared->last);
    }
}

void ProcessingBlob::progress(
    unsigned long long current, unsigned long long total, const QString& text)
{
    progress(percentOf(current, total), text);
}

Progress ProcessingBlob::progress() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->last;
}

ProcessingBlob::ListenerId ProcessingBlob::addListener(Listener listener)
{
    if (!listener) {
        throw std::invalid_argument("ProcessingBlob::addListener: the listener is empty");
    }
    const std::lock_guard lock(m_shared->mutex);
    const ListenerId id = m_shared->nextId++;
    m_shared->listeners.emplace(id, std::move(listener));
    return id;
}

void ProcessingBlob::removeListener(ListenerId id)
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->listeners.erase(id);
}

} // namespace lumo
