// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/textdb/text_db_rows.h"

#include <algorithm>

namespace lumo::cameradb::textdb {
namespace {

/// Columns for people: where a row's numbers come from, how good they are.
bool isRemark(const QString& name)
{
    return name == QLatin1String("facts") || name == QLatin1String("quality");
}

} // namespace

RowSource::RowSource(const QString& text)
    : m_reader(text)
{}

bool RowSource::next()
{
    while (!failed() && m_reader.next(m_row, m_fault) == csv::ReadResult::Row) {
        while (!m_row.empty() && m_row.back().text.isEmpty()) {
            m_row.pop_back();
        }
        if (!m_row.empty()) {
            return true;
        }
    }
    return false;
}

csv::Place RowSource::place() const
{
    return m_row.empty() ? m_reader.place() : m_row.front().place;
}

bool RowSource::atSection() const
{
    return !m_row.empty() && !m_row.front().quoted &&
           m_row.front().text.startsWith(QLatin1Char('['));
}

bool RowSource::fail(const csv::Place& place, const QString& reason)
{
    if (!failed()) {
        m_fault = {place, reason};
    }
    return false;
}

bool readHeader(RowSource& source, const std::vector<ColumnName>& allowed, std::vector<int>& order)
{
    if (!source.next() || source.atSection()) {
        return source.fail(
            source.place(), QStringLiteral("the section has no row of column names"));
    }
    std::vector<QString> seen;
    for (const csv::Cell& cell : source.row()) {
        const auto known =
            std::find_if(allowed.begin(), allowed.end(), [&cell](const ColumnName& column) {
                return column.name == cell.text;
            });
        if (known == allowed.end() && !isRemark(cell.text)) {
            return source.fail(cell.place, QStringLiteral("unknown column '%1'").arg(cell.text));
        }
        if (std::find(seen.begin(), seen.end(), cell.text) != seen.end()) {
            return source.fail(
                cell.place, QStringLiteral("column '%1' occurs twice").arg(cell.text));
        }
        seen.push_back(cell.text);
        order.push_back(
            known == allowed.end() ? kNoColumn : static_cast<int>(known - allowed.begin()));
    }
    for (const ColumnName& column : allowed) {
        if (column.required && std::find(seen.begin(), seen.end(), column.name) == seen.end()) {
            return source.fail(
                source.place(), QStringLiteral("column '%1' is missing").arg(column.name));
        }
    }
    return true;
}

bool checkLength(RowSource& source, std::size_t columns)
{
    return source.row().size() <= columns ||
           source.fail(
               source.row()[columns].place,
               QStringLiteral("more cells than the section's %1 columns").arg(columns));
}

QString cellFault(const QString& column, const QString& text, const QString& what)
{
    constexpr int kShown = 40; // of a text that may be a whole file, after a stray quote
    const QString shown = text.size() <= kShown ? text : text.left(kShown) + QStringLiteral("...");
    return QStringLiteral("%1 '%2' %3").arg(column, shown, what);
}

} // namespace lumo::cameradb::textdb
