// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/textdb/csv.h"
#include "cameraInfo/textdb/text_db_tables.h"

#include <QString>

#include <vector>

/// Rows of the text form, and their way into records.
namespace lumo::cameradb::textdb {

/// The rows that mean something: no comments, no blank lines. Keeps the first
/// fault, whoever finds it.
class RowSource
{
public:
    /// \param text  must outlive the source
    explicit RowSource(const QString& text);

    /// Goes on to the next row; false at the end and after a fault.
    [[nodiscard]] bool next();

    /// The current row without empty cells at its end. No cells at the end.
    [[nodiscard]] const std::vector<csv::Cell>& row() const { return m_row; }
    [[nodiscard]] bool atEnd() const { return m_row.empty(); }
    /// Of the current row; behind the last one at the end.
    [[nodiscard]] csv::Place place() const;
    /// Whether there is a current row and it is a section's name in brackets.
    [[nodiscard]] bool atSection() const;

    /// Notes a fault. \returns false, for the caller to return
    bool fail(const csv::Place& place, const QString& reason);
    [[nodiscard]] bool failed() const { return !m_fault.reason.isEmpty(); }
    [[nodiscard]] const csv::Fault& fault() const { return m_fault; }

private:
    csv::Reader m_reader;
    std::vector<csv::Cell> m_row;
    csv::Fault m_fault;
};

/// What a section allows in its row of column names.
struct ColumnName
{
    QString name;
    bool required = false;
};

/// Reads the row of column names. "facts" and "quality" are taken in any section.
/// \param[out] order  for each cell of a row the index of its column, or kNoColumn
[[nodiscard]] bool readHeader(
    RowSource& source, const std::vector<ColumnName>& allowed, std::vector<int>& order);
inline constexpr int kNoColumn = -1;

/// Checks that the current row has no more cells than the section has columns.
[[nodiscard]] bool checkLength(RowSource& source, std::size_t columns);

/// A fault of one cell, such as "imageWidthPx 'x' is not a whole number".
[[nodiscard]] QString cellFault(const QString& column, const QString& text, const QString& what);

/// Moves the current row's cells into a record.
template <typename Row>
[[nodiscard]] bool readCells(
    RowSource& source, const std::vector<Column<Row>>& columns, const std::vector<int>& order,
    Row& record)
{
    if (!checkLength(source, order.size())) {
        return false;
    }
    std::vector<const csv::Cell*> cells(columns.size(), nullptr);
    for (std::size_t i = 0; i < source.row().size(); ++i) {
        if (order[i] != kNoColumn && !source.row()[i].text.isEmpty()) {
            cells[static_cast<std::size_t>(order[i])] = &source.row()[i];
        }
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const Column<Row>& column = columns[i];
        if (cells[i] == nullptr) {
            if (column.required) {
                return source.fail(source.place(), column.name + QStringLiteral(" is empty"));
            }
        } else if (!column.set(record, cells[i]->text)) {
            return source.fail(
                cells[i]->place,
                cellFault(column.name, cells[i]->text, QStringLiteral("is not ") + column.content));
        }
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (cells[i] != nullptr && columns[i].applies && !columns[i].applies(record)) {
            return source.fail(
                cells[i]->place, cellFault(
                                     columns[i].name, cells[i]->text,
                                     QStringLiteral("does not apply to this lens type")));
        }
    }
    return true;
}

/// Reads a section from its column names on, up to the next section's name,
/// which is the current row then.
/// \param add  takes each record; false after noting a fault
template <typename Row, typename Add>
[[nodiscard]] bool readRows(RowSource& source, const std::vector<Column<Row>>& columns, Add add)
{
    std::vector<ColumnName> names;
    for (const Column<Row>& column : columns) {
        names.push_back({column.name, column.required});
    }
    std::vector<int> order;
    if (!readHeader(source, names, order)) {
        return false;
    }
    while (source.next() && !source.atSection()) {
        Row record;
        if (!readCells(source, columns, order, record) || !add(record)) {
            return false;
        }
    }
    return !source.failed();
}

} // namespace lumo::cameradb::textdb
