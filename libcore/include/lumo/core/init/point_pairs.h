// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <Eigen/Core>
#include <QString>

#include <vector>

class QIODevice;

namespace lumo {

/// Corresponding points of two sets: points1[i] belongs to points2[i]. A value.
struct PointPairs
{
    std::vector<Eigen::Vector3d> points1;
    std::vector<Eigen::Vector3d> points2; ///< as many as points1, in a unit of their own
    /// Standard deviations on each axis, positive, in the unit of points1; as
    /// many as points1, or empty if none were given.
    std::vector<Eigen::Vector3d> sigmas;
    std::vector<QString> names; ///< as many as points1, or empty if none were given
};

/// Reads point pairs from a table in UTF-8. The first line names the columns
/// x1, y1, z1, x2, y2, z2, in any order and case, and perhaps sx, sy, sz (all
/// three) and name. Cells are separated by commas, semicolons or tabs, whichever
/// the first line has; numbers have a decimal point. Quotes around a cell are
/// removed; a cell cannot hold a separator. Empty lines, and lines that begin
/// with "#", are skipped.
///
/// Memory is that of the pairs, beside one line of at most 64 KiB.
///
/// \param[out] pairs  replaced on success, untouched on failure
/// \param[out] error  on failure "line L: reason", else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool readPointPairs(
    QIODevice& device, PointPairs& pairs, QString& error);
/// The same from a file.
/// \param[out] error  on failure the reason, without the path; else untouched
[[nodiscard]] LUMO_CORE_EXPORT bool readPointPairs(
    const QString& path, PointPairs& pairs, QString& error);

} // namespace lumo
