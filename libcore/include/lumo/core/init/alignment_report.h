// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/init/alignment.h"

class QByteArray;

namespace lumo {

/// An alignment as one self-contained HTML page in UTF-8: the transform, the
/// share of inliers, a histogram of the residuals on each axis, views from above
/// and from two sides with inliers and outliers, and a table of all points that
/// can be sorted.
///
/// \param title  what was aligned, such as the file's name; any text
/// \param alignment  of `pairs`
[[nodiscard]] LUMO_CORE_EXPORT QByteArray
alignmentReport(const QString& title, const PointPairs& pairs, const Alignment& alignment);

} // namespace lumo
