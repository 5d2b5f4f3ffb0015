// SPDX-License-Identifier: Apache-2.0
#include "xml/project_20_21/old_project_changes.h"

#include <algorithm>

namespace lumo::kpx {

void Changes::renamed(const QString& before, const QString& after, int line)
{
    add(Kind::Renamed, before, after, line);
}

void Changes::moved(const QString& what, const QString& into, int line)
{
    add(Kind::Moved, what, into, line);
}

void Changes::rewritten(const QString& what, const QString& into, int line)
{
    add(Kind::Rewritten, what, into, line);
}

void Changes::dropped(const QString& what, const QString& reason, int line)
{
    add(Kind::Dropped, what, reason, line);
}

void Changes::add(Kind kind, const QString& what, const QString& into, int line)
{
    const auto [place, isNew] =
        m_changes.try_emplace({kind, what, into}, ConversionChange{kind, what, into, line, 1});
    if (!isNew) {
        ++place->second.count;
        place->second.line = std::min(place->second.line, line);
    }
}

std::vector<ConversionChange> Changes::list() const
{
    std::vector<ConversionChange> list;
    list.reserve(m_changes.size());
    for (const auto& [key, change] : m_changes) {
        list.push_back(change);
    }
    std::stable_sort(
        list.begin(), list.end(), [](const auto& a, const auto& b) { return a.line < b.line; });
    return list;
}

} // namespace lumo::kpx
