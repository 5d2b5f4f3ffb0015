// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/xml/conversion_change.h"

#include <QString>

#include <map>
#include <tuple>
#include <vector>

namespace lumo::kpx {

/// Collects the changes of a conversion. A repeated change increases the count of its
/// entry.
class Changes
{
public:
    void renamed(const QString& before, const QString& after, int line);
    void moved(const QString& what, const QString& into, int line);
    void rewritten(const QString& what, const QString& into, int line);
    void dropped(const QString& what, const QString& reason, int line);

    /// The changes, sorted by line.
    [[nodiscard]] std::vector<ConversionChange> list() const;

private:
    using Kind = ConversionChange::Kind;

    void add(Kind kind, const QString& what, const QString& into, int line);

    std::map<std::tuple<Kind, QString, QString>, ConversionChange> m_changes;
};

} // namespace lumo::kpx
