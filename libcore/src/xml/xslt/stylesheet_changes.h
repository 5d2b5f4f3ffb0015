// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/conversion_change.h"

#include <QByteArray>

#include <vector>

namespace lumo::xml {

/// Lists the changes that a stylesheet makes to this document. A stylesheet declares
/// its changes below its root, by elements "change:renamed", "change:moved",
/// "change:rewritten" and "change:dropped" with the attributes `what` and `into` of a
/// ConversionChange. The result has the declarations whose `what` occurs in the
/// document; declarations without `what` are ignored.
/// \param document  must have passed xml::checkXml
[[nodiscard]] std::vector<ConversionChange> stylesheetChanges(
    const QByteArray& stylesheet, const QByteArray& document);

} // namespace lumo::xml
