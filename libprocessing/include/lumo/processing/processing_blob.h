// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/processing/export.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace lumo {

/// The progress of the work.
struct Progress
{
    int percent = 0; ///< 0 to 100
    QString text;    ///< the current activity, for a person

    bool operator==(const Progress&) const = default;
};

/// The progress of a run of processing and the request to stop it, shared by threads.
///
/// The working thread calls start(), reports progress at any rate and checks
/// shouldStop() often. An observer adds a listener or polls progress(). Listeners and
/// the log (debug level) receive only some of the reports: see
/// progress(int, const QString&).
///
/// Every function may be called from any thread. A listener may call only
/// shouldStop() and stop().
class LUMO_PROCESSING_EXPORT ProcessingBlob
{
public:
    /// Receives a report, on the thread that made it. Calls come in the order of the
    /// reports, never two at once. All reporting threads wait for it: it must return
    /// quickly, and must not throw.
    using Listener = std::function<void(const Progress&)>;

    /// Ten reports a second look smooth in a progress bar and do not flood a log.
    static constexpr std::chrono::milliseconds kDefaultInterval{100};

    /// The instance shared by the whole process.
    [[nodiscard]] static ProcessingBlob& instance();

    /// \param interval  shortest time between two reports that are passed on
    explicit ProcessingBlob(std::chrono::milliseconds interval = kDefaultInterval);
    ProcessingBlob(const ProcessingBlob&) = delete;
    ProcessingBlob& operator=(const ProcessingBlob&) = delete;
    ~ProcessingBlob();

    /// Begins a run: resets the progress to 0 and clears the request to stop. Keeps the
    /// listeners and does not call them.
    void start();
    /// Requests the work to stop, until the next start().
    void stop();
    [[nodiscard]] bool shouldStop() const;

    /// Reports progress. Listeners and log receive a report that differs from the last
    /// one they received, if it is also the first of the run, the first to reach 100 %,
    /// or at least an interval later.
    /// \param percent  below 0 counts as 0, above 100 as 100
    void progress(int percent, const QString& text);
    /// Reports `current` of `total` parts in percent, rounded down: 100 only when all
    /// parts are done. A total of 0 means "not known yet" and reports 0 %.
    void progress(unsigned long long current, unsigned long long total, const QString& text);
    /// The last report, whether or not listeners received it.
    [[nodiscard]] Progress progress() const;

    using ListenerId = int; ///< identifies a listener for removeListener()
    /// Adds a listener for all later reports.
    /// \throws std::invalid_argument if the listener is empty
    [[nodiscard]] ListenerId addListener(Listener listener);
    /// Removes a listener: it is not called any more once this returns. Does nothing if
    /// no listener has this number.
    void removeListener(ListenerId id);

private:
    struct Shared;
    const std::unique_ptr<Shared> m_shared;
};

} // namespace lumo
