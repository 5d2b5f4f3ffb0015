// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/progress_status_service.h"

#include "lumo/processing/processing_blob.h"

namespace lumo {

ProgressStatusService::ProgressStatusService(QObject* parent)
    : QObject(parent)
{
    // For connections that are made by name; the others register it themselves.
    qRegisterMetaType<ProgressStatusService::State>("lumo::ProgressStatusService::State");
}

ProgressStatusService::~ProgressStatusService() = default;

void ProgressStatusService::setProgress(int percent, const QString& text)
{
    ProcessingBlob::instance().progress(percent, text);
}

void ProgressStatusService::setProgress(
    unsigned long long current, unsigned long long total, const QString& text)
{
    ProcessingBlob::instance().progress(current, total, text);
}

bool ProgressStatusService::shouldStop() const
{
    return ProcessingBlob::instance().shouldStop();
}

void ProgressStatusService::start()
{
    ProcessingBlob::instance().start();
}

void ProgressStatusService::stop()
{
    ProcessingBlob::instance().stop();
}

void ProgressStatusService::setCurrentImage(const QString& imagePath, State state)
{
    Q_EMIT updateCurrentImage(imagePath, state);
}

} // namespace lumo
