// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace lumo::program {

/// Copies a file to `backup` and reads the copy back, so that the file may be
/// replaced. A copy that is there from before counts if it is the same.
/// \param[out] error  on failure the reason, else untouched. It is a failure if
///     something else lies at `backup`: what was kept there is not given up.
[[nodiscard]] bool backUp(const QString& file, const QString& backup, QString& error);

} // namespace lumo::program
