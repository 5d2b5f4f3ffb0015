// SPDX-License-Identifier: Apache-2.0
#pragma once

class QString;

namespace lumo::geometryProgress {

/// Reports `current` of `total` parts to the progress service if the registry of
/// services exists, else to the ProcessingBlob that the service would report to.
/// Never makes the registry: that registers converters and redirects the solvers'
/// log, which is for an application to do, not for a thread that aligns points.
void report(unsigned long long current, unsigned long long total, const QString& text);

/// Whether a stop was requested, asked in the same place.
[[nodiscard]] bool stopRequested();

} // namespace lumo::geometryProgress
