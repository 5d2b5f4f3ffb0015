// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "file_kind.h"

#include <QByteArray>
#include <QString>

#include <cstddef>

class QFile;

namespace lumo::exif {

/// The part of an image file that contains its metadata, without what would make reading
/// them expensive.
struct MetadataBytes
{
    FileKind kind = FileKind::Other;
    QByteArray header; ///< of a JPEG file; otherwise empty
    /// The header, or the mapped file, which stays mapped until the QFile is closed.
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    /// Of JPEG and TIFF files, whose packet is taken out of `data`; empty if there is none.
    QByteArray xmpPacket;
    QByteArray thermalBlock; ///< of a JPEG file of a thermal camera, see FlirBlock
    QString damage;          ///< empty, or what is wrong with a header that was read in part
};

/// Prepares the metadata of a file for reading.
///
/// Of JPEG files the EXIF segments and the size are copied, up to the first scan. Other
/// files are mapped copy-on-write: the file itself is not changed. Directory entries that
/// are expensive to read are blanked (see limitTiff()).
///
/// The XMP packet of JPEG and TIFF files is taken out: exiv2 decodes XMP with process-wide
/// tables and does not keep threads apart there; what it is not shown it can read in parallel.
/// \param file  open for reading; its position is changed
/// \param[out] error  on failure the reason in one line: a format that is not read, a file
///     that cannot be mapped, or metadata that are too expensive to read
[[nodiscard]] bool prepareMetadata(QFile& file, MetadataBytes& bytes, QString& error);

} // namespace lumo::exif
