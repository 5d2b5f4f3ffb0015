// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/conversion_change.h"

#include <QByteArray>

#include <vector>

namespace lumo::xml {

/// What a stylesheet does to this document, as it tells itself: by elements of the
/// namespace prefix "change" below its root, "renamed", "moved", "rewritten" or
/// "dropped", with the attributes `what` and `into` of a ConversionChange. Only
/// those whose `what` is in the document are returned, and one without `what` never.
/// \param document  must have passed xml::checkXml
[[nodiscard]] std::vector<ConversionChange> stylesheetChanges(
    const QByteArray& stylesheet, const QByteArray& document);

} // namespace lumo::xml
