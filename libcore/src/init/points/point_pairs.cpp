// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/point_pairs.h"

#include <QFile>
#include <QFileInfo>
#include <QIODevice>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace lumo {
namespace {

constexpr std::array<std::string_view, 9> kNumbers{"x1", "y1", "z1", "x2", "y2",
                                                   "z2", "sx", "sy", "sz"};
constexpr std::size_t kRequired = 6;
constexpr std::size_t kName = kNumbers.size();
constexpr std::size_t kMaxLineBytes = std::size_t{64} * 1024;

using Cells = std::vector<std::string_view>;

/// What the columns of a table hold: an index into kNumbers, or kName.
struct Header
{
    char separator = ',';
    std::vector<std::size_t> columns;

    [[nodiscard]] bool has(std::size_t meaning) const
    {
        return std::find(columns.begin(), columns.end(), meaning) != columns.end();
    }
};

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string_view unquoted(std::string_view text)
{
    const bool quoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return quoted ? trimmed(text.substr(1, text.size() - 2)) : text;
}

void split(std::string_view line, char separator, Cells& cells)
{
    cells.clear();
    std::size_t begin = 0;
    while (begin <= line.size()) {
        const std::size_t end = std::min(line.find(separator, begin), line.size());
        cells.push_back(unquoted(trimmed(line.substr(begin, end - begin))));
        begin = end + 1;
    }
}

QString toText(std::string_view utf8)
{
    return QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}

char separatorOf(std::string_view header)
{
    for (const char separator : {',', ';', '\t'}) {
        if (header.find(separator) != std::string_view::npos) {
            return separator;
        }
    }
    return ',';
}

bool readColumn(std::string_view cell, Header& header, QString& error)
{
    const QString name = toText(cell).toLower();
    const std::string lower = name.toStdString();
    const auto* found = std::find(kNumbers.begin(), kNumbers.end(), lower);
    if (found == kNumbers.end() && lower != "name") {
        error = QStringLiteral("unknown column '%1'").arg(toText(cell));
        return false;
    }
    const auto meaning = static_cast<std::size_t>(found - kNumbers.begin());
    if (header.has(meaning)) {
        error = QStringLiteral("column '%1' is there twice").arg(name);
        return false;
    }
    header.columns.push_back(meaning);
    return true;
}

bool readHeader(std::string_view line, Header& header, QString& error)
{
    header.separator = separatorOf(line);
    Cells cells;
    split(trimmed(line), header.separator, cells);
    for (const std::string_view cell : cells) {
        if (!readColumn(cell, header, error)) {
            return false;
        }
    }
    const bool sigmas = header.has(6) || header.has(7) || header.has(8);
    for (std::size_t i = 0; i < (sigmas ? kNumbers.size() : kRequired); ++i) {
        if (!header.has(i)) {
            error =
                QStringLiteral("column '%1' is missing")
                    .arg(QLatin1String(kNumbers[i].data(), static_cast<int>(kNumbers[i].size())));
            return false;
        }
    }
    return true;
}

/// Beyond it, and for sigmas below its inverse, nothing can be estimated.
constexpr double kLargestNumber = 1e50;

bool readNumber(std::string_view cell, std::size_t meaning, double& value, QString& error)
{
    const std::string_view digits = cell.substr(!cell.empty() && cell.front() == '+' ? 1 : 0);
    const char* const end = digits.data() + digits.size();
    const auto [read, code] = std::from_chars(digits.data(), end, value);
    const auto fail = [&](const char* reason) {
        error = QStringLiteral("%1 '%2' %3")
                    .arg(
                        QString::fromLatin1(kNumbers[meaning].data(), 2),
                        toText(cell.substr(0, 40)), QLatin1String(reason));
        return false;
    };
    if (code != std::errc() || read != end || !std::isfinite(value)) {
        return fail("is not a number");
    }
    if (meaning >= kRequired && value <= 0.0) {
        return fail("is not positive");
    }
    const bool tiny = meaning >= kRequired && value < 1.0 / kLargestNumber;
    return (std::abs(value) <= kLargestNumber && !tiny) || fail("is too large or too small");
}

bool readPair(const Cells& cells, const Header& header, PointPairs& pairs, QString& error)
{
    if (cells.size() != header.columns.size()) {
        error =
            QStringLiteral("%1 cells instead of %2").arg(cells.size()).arg(header.columns.size());
        return false;
    }
    std::array<double, kNumbers.size()> numbers{};
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const std::size_t meaning = header.columns[i];
        if (meaning == kName) {
            pairs.names.push_back(toText(cells[i]));
        } else if (!readNumber(cells[i], meaning, numbers[meaning], error)) {
            return false;
        }
    }
    pairs.points1.emplace_back(numbers[0], numbers[1], numbers[2]);
    pairs.points2.emplace_back(numbers[3], numbers[4], numbers[5]);
    if (header.has(kRequired)) {
        pairs.sigmas.emplace_back(numbers[6], numbers[7], numbers[8]);
    }
    return true;
}

/// Hands the lines of a device out one by one, without those to be skipped.
class Lines
{
public:
    explicit Lines(QIODevice& device)
        : m_device(device)
        , m_buffer(kMaxLineBytes + 2)
    {}

    /// \returns false at the end, and with `error` set if the line is too long or
    ///     cannot be read
    bool next(std::string_view& line, QString& error)
    {
        while (true) {
            const qint64 length =
                m_device.readLine(m_buffer.data(), static_cast<qint64>(m_buffer.size()));
            if (length <= 0) {
                if (!m_device.atEnd()) {
                    error = m_device.errorString();
                }
                return false;
            }
            ++m_number;
            line = {m_buffer.data(), static_cast<std::size_t>(length)};
            if (line.size() > kMaxLineBytes) {
                error = QStringLiteral("is longer than %1 bytes").arg(kMaxLineBytes);
                return false;
            }
            skipByteOrderMark(line);
            const std::string_view content = trimmed(line);
            if (!content.empty() && content.front() != '#') {
                return true;
            }
        }
    }
    [[nodiscard]] int number() const { return std::max(m_number, 1); }

private:
    void skipByteOrderMark(std::string_view& line) const
    {
        if (m_number == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") {
            line.remove_prefix(3);
        }
    }

    QIODevice& m_device;
    std::vector<char> m_buffer;
    int m_number = 0; ///< of the line read last
};

bool readTable(Lines& lines, PointPairs& pairs, QString& error)
{
    std::string_view line;
    Header header;
    if (!lines.next(line, error)) {
        error = error.isEmpty() ? QStringLiteral("there is no header") : error;
        return false;
    }
    if (!readHeader(line, header, error)) {
        return false;
    }
    Cells cells;
    while (lines.next(line, error)) {
        split(
            line.back() == '\n' ? line.substr(0, line.size() - 1) : line, header.separator, cells);
        if (!readPair(cells, header, pairs, error)) {
            return false;
        }
    }
    return error.isEmpty();
}

} // namespace

bool readPointPairs(QIODevice& device, PointPairs& pairs, QString& error)
{
    PointPairs read;
    QString reason;
    Lines lines(device);
    if (!readTable(lines, read, reason)) {
        error = QStringLiteral("line %1: %2").arg(lines.number()).arg(reason);
        return false;
    }
    pairs = std::move(read);
    return true;
}

bool readPointPairs(const QString& path, PointPairs& pairs, QString& error)
{
    if (QFileInfo(path).isDir()) {
        error = QStringLiteral("is a folder");
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return false;
    }
    return readPointPairs(file, pairs, error);
}

} // namespace lumo
