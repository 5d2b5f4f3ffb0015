// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <QByteArray>
#include <QString>

namespace lumo {

/// A range of a picture's rows, counted from 0.
struct RowRange
{
    quint32 first = 0;
    quint32 count = 0;
};

/// Cuts the picture of a TIFF file to a range of its rows. The file must have one
/// directory and uncompressed strips (TIFF 6.0, sections 2 and 7). Its length and all
/// offsets stay: the first kept row moves to the place of row 0, and so on; the free
/// rest becomes zero. An EXIF image height equal to the picture's becomes the new one.
/// \param height  number of rows that the picture must have; `rows` lies within
/// \param[in,out] tiff  the file; untouched on failure
/// \param[out] error  why the file is refused, in one line
[[nodiscard]] LUMO_TEST_EXPORT bool cutTiffRows(
    QByteArray& tiff, quint32 height, RowRange rows, QString& error);

} // namespace lumo
