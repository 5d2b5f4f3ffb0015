// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/text.h"

#include <QByteArray>
#include <QCollator>
#include <QStringView>
#include <QVector>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

namespace lumo::text {

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// The digits that `text` begins with.
QStringView leadingDigits(QStringView text)
{
    return text.left(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

int sign(int value)
{
    return int(value > 0) - int(value < 0);
}

/// Compares two texts of digits by value. Works for any length; an empty text is 0.
int compareNumbers(QStringView a, QStringView b)
{
    const auto isZero = [](QChar c) { return c == QLatin1Char('0'); };
    a = a.mid(std::find_if_not(a.begin(), a.end(), isZero) - a.begin());
    b = b.mid(std::find_if_not(b.begin(), b.end(), isZero) - b.begin());
    if (a.size() != b.size()) {
        return a.size() < b.size() ? -1 : 1;
    }
    return sign(a.compare(b));
}

/// Compares runs of digits by value and all else by code unit.
int compareByRuns(QStringView a, QStringView b)
{
    while (!a.isEmpty() && !b.isEmpty()) {
        const QStringView numberA = leadingDigits(a);
        const QStringView numberB = leadingDigits(b);
        if (!numberA.isEmpty() && !numberB.isEmpty()) {
            if (const int order = compareNumbers(numberA, numberB); order != 0) {
                return order;
            }
            a = a.mid(numberA.size());
            b = b.mid(numberB.size());
        } else if (a.front() != b.front()) {
            return a.front() < b.front() ? -1 : 1;
        } else {
            a = a.mid(1);
            b = b.mid(1);
        }
    }
    return int(!a.isEmpty()) - int(!b.isEmpty());
}

/// Compares digits as numbers. The C locale's collator ignores the numeric mode, so it is
/// tested on construction and replaced by compareByRuns.
class NumericCollator
{
public:
    NumericCollator()
    {
        m_collator.setNumericMode(true);
        m_works = m_collator.compare(QStringLiteral("9"), QStringLiteral("17")) < 0;
    }

    [[nodiscard]] int compare(const QString& a, const QString& b) const
    {
        return m_works ? m_collator.compare(a, b) : compareByRuns(a, b);
    }

private:
    QCollator m_collator;
    bool m_works = false;
};

template <typename T>
T parseNumber(const QString& text, bool* ok)
{
    QByteArray digits =
        text.trimmed().toLatin1(); // other characters become "?", which no number contains
    if (digits.startsWith('+') && !digits.startsWith("+-")) {
        digits.remove(0, 1); // std::from_chars knows no plus sign
    }
    T value{};
    const char* const end = digits.constData() + digits.size();
    const auto result = std::from_chars(digits.constData(), end, value);
    bool good = result.ec == std::errc{} && result.ptr == end;
    if constexpr (std::is_floating_point_v<T>) {
        good = good && std::isfinite(value);
    }
    if (ok != nullptr) {
        *ok = good;
    }
    return good ? value : T{};
}

} // namespace

bool iequals(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

int localeAwareCompare(const QString& a, const QString& b)
{
    // Opening a collator takes longer than a comparison, and one may not be
    // used by two threads.
    thread_local const NumericCollator collator;
    const int order = sign(collator.compare(a, b));
    return order != 0 ? order : sign(a.compare(b));
}

int compareVersions(const QString& a, const QString& b)
{
    const auto partsA = QStringView(a).split(QLatin1Char('.'));
    const auto partsB = QStringView(b).split(QLatin1Char('.'));
    const auto number = [](const auto& parts, qsizetype index) {
        return index < parts.size() ? leadingDigits(parts[int(index)]) : QStringView();
    };
    for (qsizetype i = 0; i < std::max(partsA.size(), partsB.size()); ++i) {
        if (const int order = compareNumbers(number(partsA, i), number(partsB, i)); order != 0) {
            return order;
        }
    }
    return 0;
}

bool versionSmallerThan(const QString& a, const QString& b)
{
    return compareVersions(a, b) < 0;
}

bool versionGreaterThan(const QString& a, const QString& b)
{
    return compareVersions(a, b) > 0;
}

template <>
int fromString<int>(const QString& text, bool* ok)
{
    return parseNumber<int>(text, ok);
}

template <>
unsigned fromString<unsigned>(const QString& text, bool* ok)
{
    return parseNumber<unsigned>(text, ok);
}

template <>
unsigned long fromString<unsigned long>(const QString& text, bool* ok)
{
    return parseNumber<unsigned long>(text, ok);
}

template <>
long long fromString<long long>(const QString& text, bool* ok)
{
    return parseNumber<long long>(text, ok);
}

template <>
float fromString<float>(const QString& text, bool* ok)
{
    return parseNumber<float>(text, ok);
}

template <>
double fromString<double>(const QString& text, bool* ok)
{
    return parseNumber<double>(text, ok);
}

template <>
bool fromString<bool>(const QString& text, bool* ok)
{
    const QString word = text.trimmed();
    const bool yes = word == QLatin1String("true") || word == QLatin1String("1");
    const bool no = word == QLatin1String("false") || word == QLatin1String("0");
    if (ok != nullptr) {
        *ok = yes || no;
    }
    return yes;
}

QString withoutPrefix(const QString& text, const QString& prefix)
{
    return text.startsWith(prefix) ? text.mid(prefix.size()) : text;
}

} // namespace lumo::text
