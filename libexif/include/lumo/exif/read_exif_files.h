// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/cameradata/exif_info.h"
#include "lumo/exif/export.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace lumo::exif {

/// What became of one file.
struct FileMetadata
{
    QString path;
    ExifInfo exif;
    QStringList notes; ///< what was left out, or that the file is damaged; see readExif()
    QString error;     ///< empty if it was read
};

/// Reads the metadata of many files by several threads, and hands them on in the
/// order of the list, one at a time, in the calling thread. Threads read at most
/// some hundred files ahead of what was handed on.
/// \param threads  1 or less reads in the calling thread alone
/// \param take  false ends the reading; files that are being read are waited for
/// \throws what `take` throws, after the threads have ended
LUMO_EXIF_EXPORT void readExifFiles(
    const QStringList& paths, int threads, const std::function<bool(FileMetadata&)>& take);

} // namespace lumo::exif
