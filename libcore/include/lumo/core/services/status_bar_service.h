// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/services/service.h"

#include <QObject>
#include <QString>

namespace lumo {

/// Turns what processing code has to say into signals for a status bar. It keeps
/// nothing: without a receiver a call has no effect.
///
/// May be called from any thread. Each call emits its signal once, on the
/// calling thread and before it returns; a receiver that lives on another thread
/// must be connected with a queued connection (which the automatic connection to
/// a QObject is), and then gets the calls of one thread in their order.
class LUMO_CORE_EXPORT StatusBarService : public QObject, public Service
{
    Q_OBJECT

public:
    explicit StatusBarService(QObject* parent = nullptr);
    ~StatusBarService() override;

    /// \param step  how far the work is, from `min` to `max`; passed on unchecked
    void setProgress(int step, int min, int max, const QString& msg);
    /// Shows a message until the next one.
    void setMessage(const QString& msg);
    /// \param timeout  seconds for which the message is shown
    void flashMessage(const QString& msg, float timeout);
    /// Shows a message and that work without known length goes on.
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
