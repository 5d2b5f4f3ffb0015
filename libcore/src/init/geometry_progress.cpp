// SPDX-License-Identifier: Apache-2.0
#include "init/geometry_progress.h"

#include "lumo/core/services/core_services.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/processing/processing_blob.h"

namespace lumo::geometryProgress {

void report(unsigned long long current, unsigned long long total, const QString& text)
{
    if (CoreServices* const services = CoreServices::existing()) {
        services->progressStatus().setProgress(current, total, text);
    } else {
        ProcessingBlob::instance().progress(current, total, text);
    }
}

bool stopRequested()
{
    CoreServices* const services = CoreServices::existing();
    return services != nullptr ? services->progressStatus().shouldStop()
                               : ProcessingBlob::instance().shouldStop();
}

} // namespace lumo::geometryProgress
