// SPDX-License-Identifier: Apache-2.0
#include "show/text_table.h"

#include <algorithm>

namespace lumo::program {
namespace {

QString printable(QString cell)
{
    constexpr int kMaxLength = 100;
    if (cell.size() > kMaxLength) {
        cell = cell.left(kMaxLength - 3) + QStringLiteral("...");
    }
    for (QChar& character : cell) {
        if (character.category() == QChar::Other_Control) {
            character = QLatin1Char('?');
        }
    }
    return cell.isEmpty() ? QStringLiteral("-") : cell;
}

} // namespace

QString formatTable(const std::vector<QStringList>& rows)
{
    std::vector<int> widths;
    for (const QStringList& row : rows) {
        widths.resize(std::max(widths.size(), static_cast<std::size_t>(row.size())), 0);
        for (int column = 0; column < row.size(); ++column) {
            int& width = widths[static_cast<std::size_t>(column)];
            width = std::max(width, printable(row[column]).size());
        }
    }
    QString text;
    for (const QStringList& row : rows) {
        QString line;
        for (int column = 0; column < row.size(); ++column) {
            const int width = widths[static_cast<std::size_t>(column)];
            line += printable(row[column]).leftJustified(width + 2);
        }
        while (line.endsWith(QLatin1Char(' '))) {
            line.chop(1);
        }
        text += line + QLatin1Char('\n');
    }
    return text;
}

} // namespace lumo::program
