// SPDX-License-Identifier: Apache-2.0
#include "cameraInfo/textdb/csv.h"

#include <algorithm>

namespace lumo::csv {
namespace {

constexpr QLatin1Char kQuote('"');
constexpr QLatin1Char kSeparator(',');
constexpr QLatin1Char kLineFeed('\n');
constexpr QLatin1Char kCarriageReturn('\r');

bool needsQuotes(const QString& cell, bool first)
{
    const auto special = [](QChar character) {
        return character == kQuote || character == kSeparator || character == kLineFeed ||
               character == kCarriageReturn;
    };
    return std::any_of(cell.begin(), cell.end(), special) ||
           // unquoted, these begin a comment or a section
           (first && (cell.startsWith(QLatin1Char('#')) || cell.startsWith(QLatin1Char('['))));
}

} // namespace

QString Fault::toString() const
{
    return QStringLiteral("line %1, column %2: ").arg(place.line).arg(place.column) + reason;
}

Reader::Reader(const QString& text)
    : m_text(text)
{
    if (m_text.startsWith(QChar(QChar::ByteOrderMark))) {
        m_position = m_lineStart = 1;
    }
}

ReadResult Reader::next(std::vector<Cell>& row, Fault& fault)
{
    row.clear();
    skipComments();
    if (m_position >= m_text.size()) {
        return ReadResult::End;
    }
    for (;;) {
        if (!readCell(row.emplace_back(), fault)) {
            m_position = m_text.size(); // after a bad quote the cells' limits are unknown
            return ReadResult::Fault;
        }
        if (m_position >= m_text.size() || m_text[m_position] != kSeparator) {
            break;
        }
        ++m_position;
    }
    skipLineEnd();
    return ReadResult::Row;
}

void Reader::skipComments()
{
    while (m_position < m_text.size() && m_text[m_position] == QLatin1Char('#')) {
        while (m_position < m_text.size() && !atLineEnd()) {
            ++m_position;
        }
        skipLineEnd();
    }
}

bool Reader::readCell(Cell& cell, Fault& fault)
{
    cell.place = place();
    if (m_position < m_text.size() && m_text[m_position] == kQuote) {
        return readQuoted(cell, fault);
    }
    readPlain(cell);
    const int quote = cell.text.indexOf(kQuote);
    if (quote >= 0) {
        fault = {cell.place, QStringLiteral("a quote inside a cell that does not begin with one")};
        fault.place.column += quote;
        return false;
    }
    return true;
}

bool Reader::readQuoted(Cell& cell, Fault& fault)
{
    cell.quoted = true;
    for (++m_position; m_position < m_text.size(); ++m_position) {
        const QChar character = m_text[m_position];
        if (character == kLineFeed) {
            ++m_line;
            m_lineStart = m_position + 1;
        } else if (character == kQuote) {
            ++m_position;
            if (m_position >= m_text.size() || m_text[m_position] == kSeparator || atLineEnd()) {
                return true;
            }
            // A doubled quote is one quote of the content; anything else ends the cell.
            if (m_text[m_position] != kQuote) {
                fault = {place(), QStringLiteral("text behind the closing quote of a cell")};
                return false;
            }
        }
        cell.text += character;
    }
    fault = {cell.place, QStringLiteral("the quote that begins this cell is never closed")};
    return false;
}

void Reader::readPlain(Cell& cell)
{
    const int begin = m_position;
    while (m_position < m_text.size() && m_text[m_position] != kSeparator && !atLineEnd()) {
        ++m_position;
    }
    cell.text = m_text.mid(begin, m_position - begin);
}

bool Reader::atLineEnd() const
{
    return m_text[m_position] == kLineFeed ||
           (m_text[m_position] == kCarriageReturn && m_position + 1 < m_text.size() &&
            m_text[m_position + 1] == kLineFeed);
}

void Reader::skipLineEnd()
{
    if (m_position >= m_text.size()) {
        return;
    }
    m_position += m_text[m_position] == kLineFeed ? 1 : 2; // LF or CRLF
    ++m_line;
    m_lineStart = m_position;
}

void appendRow(QString& text, const std::vector<QString>& cells)
{
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) {
            text += kSeparator;
        }
        if (needsQuotes(cells[i], i == 0)) {
            QString doubled = cells[i];
            doubled.replace(kQuote, QStringLiteral("\"\""));
            text += kQuote + doubled + kQuote;
        } else {
            text += cells[i];
        }
    }
    text += kLineFeed;
}

} // namespace lumo::csv
