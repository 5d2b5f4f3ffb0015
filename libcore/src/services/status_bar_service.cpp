// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/status_bar_service.h"

namespace lumo {

StatusBarService::StatusBarService(QObject* parent)
    : QObject(parent)
{}

StatusBarService::~StatusBarService() = default;

void StatusBarService::setProgress(int step, int min, int max, const QString& msg)
{
    Q_EMIT signalSetProgress(step, min, max, msg);
}

void StatusBarService::setMessage(const QString& msg)
{
    Q_EMIT signalSetMessage(msg);
}

void StatusBarService::flashMessage(const QString& msg, float timeout)
{
    Q_EMIT signalFlashMessage(msg, timeout);
}

void StatusBarService::busyMessage(const QString& msg)
{
    Q_EMIT signalBusyMessage(msg);
}

void StatusBarService::clear()
{
    Q_EMIT signalClear();
}

} // namespace lumo
