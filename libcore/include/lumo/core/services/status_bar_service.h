// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/services/service.h"

#include <QObject>
#include <QString>

namespace lumo {

/// Emits the messages of processing code as signals for a status bar. It stores
/// nothing: without a receiver a call has no effect.
///
/// May be called from any thread. Each call emits its signal once, on the
/// calling thread and before it returns. A receiver that lives on another thread
/// must be connected with a queued connection (which the automatic connection to
/// a QObject is); it then gets the calls of one thread in their order.
class LUMO_CORE_EXPORT StatusBarService : public QObject, public Service
{
    Q_OBJECT

public:
    explicit StatusBarService(QObject* parent = nullptr);
    ~StatusBarService() override;

    /// Shows progress and a message.
    /// \param step  the progress, from `min` to `max`; all three are passed on unchecked
    void setProgress(int step, int min, int max, const QString& msg);
    /// Shows a message until the next one.
    void setMessage(const QString& msg);
    /// Shows a message for a limited time.
    /// \param timeout  in seconds
    void flashMessage(const QString& msg, float timeout);
    /// Shows a message and an indicator for work of unknown length.
    void busyMessage(const QString& msg);
    void clear();

Q_SIGNALS:
    void signalSetProgress(int step, int min, int max, QString msg); ///< by setProgress()
    void signalSetMessage(QString msg);                              ///< by setMessage()
    void signalFlashMessage(QString msg, float timeout);             ///< by flashMessage()
    void signalBusyMessage(QString msg);                             ///< by busyMessage()
    void signalClear();                                              ///< by clear()
};

} // namespace lumo
