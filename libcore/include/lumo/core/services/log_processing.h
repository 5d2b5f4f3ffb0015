// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/pipeline/processing_step.h"

namespace lumo {

/// Says that a processing step runs while the guard lives:
///
///     const LogProcessing running(ProcessingStep::KeypointMatching);
///
/// It starts the step in the process's ApplicationStateService and stops the
/// innermost running one at its end, so guards end in the reverse order of
/// their beginning. Guards are used by one thread at a time.
///
/// A step that is current already does not start again; the end of its guard
/// then takes out the step around it, or logs a warning if there is none.
class LUMO_CORE_EXPORT LogProcessing
{
public:
    [[nodiscard]] explicit LogProcessing(ProcessingStep step);
    LogProcessing(const LogProcessing&) = delete;
    LogProcessing& operator=(const LogProcessing&) = delete;
    ~LogProcessing();
};

} // namespace lumo
