// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/log_processing.h"

#include "lumo/core/services/application_state_service.h"
#include "lumo/core/services/core_services.h"

namespace lumo {

LogProcessing::LogProcessing(ProcessingStep step)
{
    serviceApplicationState().startProcessingStep(step);
}

LogProcessing::~LogProcessing()
{
    serviceApplicationState().stopProcessingStep();
}

} // namespace lumo
