// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

class QIODevice;

namespace lumo::exif {

/// A segment of a JPEG file before its first scan (ITU-T T.81, annex B).
struct JpegSegment
{
    static constexpr unsigned char kApp1 = 0xe1;

    unsigned char type = 0; ///< second byte of the marker
    QByteArray content;     ///< without marker and length

    /// SOF0 to SOF15.
    [[nodiscard]] bool isFrameHeader() const;
    /// As it stands in the file.
    [[nodiscard]] QByteArray bytes() const;
};

/// Goes through the segments of a file from its start. Refers to the file.
class JpegSegments
{
public:
    explicit JpegSegments(QIODevice& file);

    /// \returns  false at the first scan, at the end of the image, or where the file
    ///     is no JPEG, is damaged, or has had 4096 segments
    [[nodiscard]] bool next(JpegSegment& segment);

    /// Whether next() ended at the first scan or the end of the image.
    [[nodiscard]] bool atPicture() const { return m_atPicture; }

private:
    QIODevice& m_file;
    int m_count = 0;
    bool m_atPicture = false;
    bool m_damaged = false;
};

} // namespace lumo::exif
