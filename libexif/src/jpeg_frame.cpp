// SPDX-License-Identifier: Apache-2.0
#include "jpeg_frame.h"

#include "jpeg_segments.h"

namespace lumo::exif {

int readJpegComponents(QIODevice& file)
{
    // precision (1 byte), height (2), width (2), number of components (1)
    constexpr int kComponents = 5;
    JpegSegments segments(file);
    JpegSegment segment;
    while (segments.next(segment)) {
        if (segment.isFrameHeader()) {
            return segment.content.size() > kComponents
                       ? static_cast<unsigned char>(segment.content[kComponents])
                       : 0;
        }
    }
    return 0;
}

} // namespace lumo::exif
