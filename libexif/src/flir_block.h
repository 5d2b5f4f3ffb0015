// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/exif/export.h"

#include <QByteArray>
#include <QString>

#include <cstddef>

namespace lumo::exif {

/// What thermal cameras write of themselves beside EXIF: a file of its own ("FFF"), cut into
/// APP1 segments of a JPEG file. It starts with a header that names a directory of records.
struct FlirBlock
{
    QString serialNumber; ///< of the camera; empty if it has none
    QString lensModel;
    double fieldOfViewDeg = 0.0; ///< along the longer side; 0 if not stated
    /// Of the detector's picture; 0 x 0 if the block has none.
    std::size_t rawWidth = 0;
    std::size_t rawHeight = 0;
};

/// Puts a block together. At most 8 MiB are kept; real blocks have up to 2 MiB.
class FlirSegments
{
public:
    /// Appends the part of the block that the segment contains, if it is the next in order.
    /// \param segment  an APP1 segment without marker and length
    void add(const QByteArray& segment);
    [[nodiscard]] const QByteArray& block() const { return m_block; }

private:
    QByteArray m_block;
    int m_next = 0;
};

/// Reads the records; those that lie outside of the block, or state what cannot be, are
/// left out.
[[nodiscard]] LUMO_TEST_EXPORT FlirBlock readFlirBlock(const QByteArray& block);

} // namespace lumo::exif
