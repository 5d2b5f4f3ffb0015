// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace lumo::exif {

/// How a file is read.
enum class FileKind {
    Jpeg,
    Tiff, ///< and the raw formats that are TIFF with another number in the header
    Bmff, ///< still pictures of the ISO base media family: HEIC, HEIF, AVIF
    Cr3,  ///< of that family, too; metadata come before the picture
    Crw,
    Other,   ///< whatever else exiv2 knows
    Refused, ///< videos, sound, and formats whose metadata are not read
};

/// Bytes of the beginning that fileKind() needs.
constexpr int kFileHeadSize = 256;

/// By the first bytes of a file, whatever its name.
/// \param[out] reason  what the file is, if refused
[[nodiscard]] FileKind fileKind(const QByteArray& head, QString& reason);

} // namespace lumo::exif
