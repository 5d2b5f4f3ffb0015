// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "cameraInfo/textdb/text_db_cell.h"
#include "cameraInfo/textdb/text_db_tables.h"

#include <type_traits>
#include <utility>

/// Columns made from an accessor of the field: a generic lambda that takes a
/// row and returns a reference to the field, const for a const row.
namespace lumo::cameradb::textdb {

template <typename Row, typename Access>
[[nodiscard]] Column<Row> column(const char* name, Access access)
{
    using Value = std::remove_reference_t<decltype(access(std::declval<Row&>()))>;
    return {
        QString::fromLatin1(name),
        QString::fromLatin1(kCellContent<Value>),
        false,
        [access](Row& row, const QString& cell) { return fromCell(cell, access(row)); },
        [access](const Row& row) { return toCell(access(row)); },
        {}};
}

template <typename Row, typename Access>
[[nodiscard]] Column<Row> requiredColumn(const char* name, Access access)
{
    Column<Row> result = column<Row>(name, access);
    result.required = true;
    return result;
}

/// A column that only some rows have.
template <typename Row, typename Access, typename Applies>
[[nodiscard]] Column<Row> columnIf(Applies applies, const char* name, Access access)
{
    Column<Row> result = column<Row>(name, access);
    result.applies = applies;
    return result;
}

/// A required column in another unit: the cell is the field times `scale`. With
/// 15 digits text, value and text again agree: the conversions' three roundings
/// stay below half a unit of the 15th.
template <typename Row, typename Access>
[[nodiscard]] Column<Row> scaledColumn(const char* name, double scale, Access access)
{
    Column<Row> result = requiredColumn<Row>(name, access);
    result.set = [access, scale](Row& row, const QString& cell) {
        const bool ok = fromCell(cell, access(row));
        access(row) /= scale;
        return ok;
    };
    result.get = [access, scale](const Row& row) {
        constexpr int kDigits = 15;
        return QString::number(access(row) * scale, 'g', kDigits);
    };
    return result;
}

/// Appends the columns of a band, after the columns that identify its owner.
template <typename Row>
void appendBandColumns(std::vector<Column<Row>>& columns)
{
    columns.push_back(requiredColumn<Row>(
        "name", [](auto& row) -> auto& { return row.band.name; }));
    columns.push_back(column<Row>(
        "wavelengthNm", [](auto& row) -> auto& { return row.band.wavelength; }));
    columns.push_back(column<Row>(
        "widthNm", [](auto& row) -> auto& { return row.band.width; }));
    columns.push_back(column<Row>(
        "weight", [](auto& row) -> auto& { return row.band.weight; }));
}

} // namespace lumo::cameradb::textdb
