// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QByteArray>
#include <QString>

namespace lumo {

/// Some of a picture's rows, counted from 0.
struct RowRange
{
    quint32 first = 0;
    quint32 count = 0;
};

/// Keeps only some rows of the picture in a TIFF file of uncompressed strips and
/// one directory chain of one (TIFF 6.0, sections 2 and 7). The file keeps its
/// length and all its offsets: row i takes the place of row i of before, and the
/// places that are left over become zero. An EXIF image height that was the
/// picture's becomes the new one.
/// \param height  rows that the picture must have; `rows` lies within
/// \param[in,out] tiff  the file; untouched on failure
/// \param[out] error  why the file is refused, in one line
[[nodiscard]] LUMO_TEST_EXPORT bool cutTiffRows(
    QByteArray& tiff, quint32 height, RowRange rows, QString& error);

} // namespace lumo
