// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/services/service.h"

#include <QObject>
#include <QString>

#include <cstdint>

namespace lumo {

/// The progress of processing, the request to stop it, and the current image. The
/// process's ProcessingBlob stores progress and request.
///
/// All functions may be called from any thread.
class LUMO_CORE_EXPORT ProgressStatusService : public QObject, public Service
{
    Q_OBJECT

public:
    /// The state of the current image. Registered with the meta-object system as
    /// "lumo::ProgressStatusService::State".
    enum class State : std::int32_t {
        Waiting = 0, ///< its turn will come
        Running = 1, ///< it is being worked on
        Done = 2,
        Skipped = 3, ///< it is not part of the work
        Failed = 4,
    };
    Q_ENUM(State)

    explicit ProgressStatusService(QObject* parent = nullptr);
    ~ProgressStatusService() override;

    /// \param percent  0 to 100; clamped to this range
    void setProgress(int percent, const QString& text);
    /// `current` parts of `total` are done.
    void setProgress(unsigned long long current, unsigned long long total, const QString& text);
    /// Whether the run should end early. Long work must call this often.
    [[nodiscard]] bool shouldStop() const;
    /// Begins a run: no progress, no request to stop.
    void start();
    /// Requests the run to end. The request stays until the next start().
    void stop();
    void setCurrentImage(const QString& imagePath, State state);

Q_SIGNALS:
    /// Emitted by every setCurrentImage(), on the calling thread and before the call
    /// returns. A receiver that lives on another thread must be connected with a
    /// queued connection (which the automatic connection to a QObject is).
    void updateCurrentImage(QString imagePath, lumo::ProgressStatusService::State state);
};

} // namespace lumo
