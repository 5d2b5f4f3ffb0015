// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/processing/export.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>

namespace lumo {

/// How far the work has come.
struct Progress
{
    int percent = 0; ///< 0 to 100
    QString text;    ///< what is being done

    bool operator==(const Progress&) const = default;
};

/// What the threads of one run of processing share: its progress, and the
/// request to stop it.
///
/// The work calls start(), reports as often as it likes and asks shouldStop()
/// often; whoever watches adds a listener, or asks progress(). Reports are
/// passed on to the listeners and to the log (debug level), but not each: see
/// progress(int, const QString&).
///
/// Every function may be called from any thread. Of those that a listener may
/// call while it is being called, there are two only: shouldStop() and stop().
class LUMO_PROCESSING_EXPORT ProcessingBlob
{
public:
    /// Is called on the thread that reports, never by two threads at once, and
    /// in the order of the reports. The reporting threads wait for it: it must
    /// return soon, and must not throw.
    using Listener = std::function<void(const Progress&)>;

    /// Fast enough for an eye, and too slow to flood a log.
    static constexpr std::chrono::milliseconds kDefaultInterval{100};

    /// The one that the process shares.
    [[nodiscard]] static ProcessingBlob& instance();

    /// \param interval  shortest time between two reports that are passed on
    explicit ProcessingBlob(std::chrono::milliseconds interval = kDefaultInterval);
    ProcessingBlob(const ProcessingBlob&) = delete;
    ProcessingBlob& operator=(const ProcessingBlob&) = delete;
    ~ProcessingBlob();

    /// Begins a run: nothing is done yet, and nobody asked to stop. Listeners
    /// stay, and are not called.
    void start();
    /// Asks the work to stop. It holds until the next start().
    void stop();
    [[nodiscard]] bool shouldStop() const;

    /// Reports progress. It is passed on if it says something new and is the
    /// first report of a run, the first to reach 100 %, or comes an interval
    /// after the last one passed on.
    /// \param percent  below 0 counts as 0, above 100 as 100
    void progress(int percent, const QString& text);
    /// Reports `current` parts of `total` as the whole percents that are done,
    /// so 100 only when all are. A total of 0 is one not known yet: 0 %.
    void progress(unsigned long long current, unsigned long long total, const QString& text);
    /// The last report, passed on or not.
    [[nodiscard]] Progress progress() const;

    using ListenerId = int; ///< what addListener() gives and removeListener() takes
    /// \throws std::invalid_argument if the listener is empty
    [[nodiscard]] ListenerId addListener(Listener listener);
    /// Once this returns the listener is not called any more. Does nothing if
    /// there is none of this number.
    void removeListener(ListenerId id);

private:
    struct Shared;
    const std::unique_ptr<Shared> m_shared;
};

} // namespace lumo
