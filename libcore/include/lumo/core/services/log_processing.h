// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/pipeline/processing_step.h"

namespace lumo {

/// Marks a processing step as running while the guard lives:
///
///     const LogProcessing running(ProcessingStep::KeypointMatching);
///
/// The constructor starts the step in the process's ApplicationStateService. The
/// destructor stops the innermost running step, so guards must end in the reverse
/// order of their construction. One thread at a time may use guards.
///
/// A step that is the current one already does not start again. The destructor of
/// such a guard stops the enclosing step, or logs a warning if there is none.
class LUMO_CORE_EXPORT LogProcessing
{
public:
    [[nodiscard]] explicit LogProcessing(ProcessingStep step);
    LogProcessing(const LogProcessing&) = delete;
    LogProcessing& operator=(const LogProcessing&) = delete;
    ~LogProcessing();
};

} // namespace lumo
