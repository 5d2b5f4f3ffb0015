// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QtEndian>

namespace lumo::exif {

/// The number at `bytes`, in the byte order that a file states.
template <typename Number>
[[nodiscard]] Number readNumber(const unsigned char* bytes, bool littleEndian)
{
    return littleEndian ? qFromLittleEndian<Number>(bytes) : qFromBigEndian<Number>(bytes);
}

} // namespace lumo::exif
