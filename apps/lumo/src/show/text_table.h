// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace lumo::program {

/// Lays rows out in columns as wide as their widest cell, two blanks apart.
/// Control characters in cells become "?", so that a file cannot steer the
/// terminal; cells of more than 100 characters are cut.
/// \param rows  the first one is the heading
/// \returns one line per row, each with a line feed
[[nodiscard]] QString formatTable(const std::vector<QStringList>& rows);

} // namespace lumo::program
