// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <vector>

/// Comma separated values as RFC 4180 has them: cells in double quotes may hold
/// commas, line ends and doubled quotes.
namespace lumo::csv {

/// A place in a text. Lines and columns count from 1, columns in UTF-16 units.
struct Place
{
    int line = 1;
    int column = 1;
};

/// What is wrong with a text, and where.
struct Fault
{
    Place place;
    QString reason;

    /// "line L, column C: reason"
    [[nodiscard]] QString toString() const;
};

struct Cell
{
    QString text;
    bool quoted = false;
    Place place; ///< of the first character, that is of the quote if there is one
};

enum class ReadResult {
    Row,
    End,
    Fault,
};

/// Reads a text row by row. Lines end in LF or CRLF; every line outside of
/// quotes is a row, an empty one a row of one empty cell, except that lines
/// beginning with "#" are comments. A byte order mark at the start is skipped.
class Reader
{
public:
    /// \param text  must outlive the reader
    explicit Reader(const QString& text);

    /// \param[out] row    the next row; empty at the end
    /// \param[out] fault  on Fault; there is no next row then
    [[nodiscard]] ReadResult next(std::vector<Cell>& row, Fault& fault);

    /// Where the next row begins.
    [[nodiscard]] Place place() const { return {m_line, m_position - m_lineStart + 1}; }

private:
    void skipComments();
    [[nodiscard]] bool readCell(Cell& cell, Fault& fault);
    [[nodiscard]] bool readQuoted(Cell& cell, Fault& fault);
    void readPlain(Cell& cell);
    [[nodiscard]] bool atLineEnd() const;
    void skipLineEnd();

    const QString& m_text;
    int m_position = 0;
    int m_line = 1;
    int m_lineStart = 0; ///< position of the current line's first character
};

/// Appends a row that Reader gives back cell by cell. Cells are quoted where
/// the form needs it, and a first cell also where it begins with "#" or "[".
void appendRow(QString& text, const std::vector<QString>& cells);

} // namespace lumo::csv
