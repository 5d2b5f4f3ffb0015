// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

class QDomElement;

namespace lumo {

/// The format version of a camera database from its root element: the attribute
/// `value` of element `version`, else its text; 0 if there is none, or no number.
[[nodiscard]] std::size_t cameraDbVersion(const QDomElement& root);

} // namespace lumo
