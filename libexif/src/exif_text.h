// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>

namespace lumo::exif {

/// Without white space at both ends and without control characters, of which
/// `hadControls` tells if given. Line ends and tabs inside become blanks.
[[nodiscard]] QString cleanedText(const QString& text, bool* hadControls = nullptr);

/// The text of a tag: up to the first NUL, as UTF-8 if it is valid, else as
/// Latin-1. Not cleaned.
[[nodiscard]] QString decodedText(const QByteArray& bytes);

} // namespace lumo::exif
