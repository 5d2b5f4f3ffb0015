// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>

namespace lumo::benchmarks {

/// Projects of many images with one camera, 0.4 kB an image; the same bytes each time.
[[nodiscard]] QByteArray projectOfVersion20(int images);
[[nodiscard]] QByteArray projectOfFormat0(int images);

} // namespace lumo::benchmarks
