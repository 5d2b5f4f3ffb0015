// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "show/output.h"

#include <QString>

// `lumo camdb ...`: the camera databases. Each function is one subcommand.
namespace lumo::program::camdb {

[[nodiscard]] ExitCode list(const CommonOptions& options);

/// A camera or a rig; a camera of one body with a serial number.
[[nodiscard]] ExitCode show(
    const QString& name, const QString& serialNumber, const CommonOptions& options);

/// Makes a camera from an image's metadata and saves it in the user's database. If the
/// camera is known already, only adds the image's bands to it.
/// \param overwrite  replace a known camera instead
[[nodiscard]] ExitCode add(const QString& image, bool overwrite, const CommonOptions& options);

/// Removes a camera, rig or mapping of the user's.
[[nodiscard]] ExitCode remove(
    const QString& name, const QString& serialNumber, const CommonOptions& options);

[[nodiscard]] ExitCode map(
    const QString& exifId, const QString& name, const CommonOptions& options);

/// Merges a database of any version (XML) or a text database (.csv) into the user's.
/// \param overwrite  its entries replace those of the same name
[[nodiscard]] ExitCode import(const QString& file, bool overwrite, const CommonOptions& options);

/// Writes the user's database, or the shipped one, as XML or text (.csv).
[[nodiscard]] ExitCode exportTo(const QString& file, bool internal, const CommonOptions& options);

/// Whether a file is a database of the current version.
[[nodiscard]] ExitCode validate(const QString& file, const CommonOptions& options);

/// Converts a database of an older version to the current one.
[[nodiscard]] ExitCode convert(
    const QString& input, const QString& output, const CommonOptions& options);

/// Rewrites the internal file from the shipped text database.
[[nodiscard]] ExitCode rebuild(const CommonOptions& options);

[[nodiscard]] ExitCode selftest(const CommonOptions& options);

} // namespace lumo::program::camdb
