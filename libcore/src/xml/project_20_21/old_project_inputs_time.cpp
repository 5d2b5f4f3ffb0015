// SPDX-License-Identifier: Apache-2.0
// Reading the time stamps of an old project.
#include "xml/project_20_21/old_project_inputs.h"

#include <QDate>
#include <QLocale>
#include <QRegularExpression>
#include <QTime>

namespace lumo::kpx {
namespace {

// Dates and times are read apart: together they would be a time of the local time
// zone, some of which do not exist.

QString text(const QDate& date, const QTime& time)
{
    return date.isValid() && time.isValid() ? date.toString(QStringLiteral("yyyy:MM:dd")) +
                                                  time.toString(QStringLiteral(" hh:mm:ss"))
                                            : QString();
}

QString fromNumbers(const QString& stamp)
{
    static const QRegularExpression form(
        QStringLiteral("\\A(\\d{4}:\\d{2}:\\d{2}) (\\d{2}:\\d{2}:\\d{2})(:.+)?\\z"));
    const QRegularExpressionMatch match = form.match(stamp);
    return match.hasMatch()
               ? text(
                     QDate::fromString(match.captured(1), QStringLiteral("yyyy:MM:dd")),
                     QTime::fromString(match.captured(2), QStringLiteral("hh:mm:ss")))
               : QString();
}

QString fromEnglish(const QString& stamp)
{
    static const QRegularExpression form(QStringLiteral("\\A(.+ \\d{4}) (\\d.*)\\z"));
    const QRegularExpressionMatch match = form.match(stamp);
    return match.hasMatch()
               ? text(
                     QLocale::c().toDate(match.captured(1), QStringLiteral("dddd, MMMM dd, yyyy")),
                     QLocale::c().toTime(match.captured(2), QStringLiteral("h:mm:ss AP")))
               : QString();
}

} // namespace

QString normalisedTime(const QString& stamp, bool& known)
{
    for (const auto read : {&fromNumbers, &fromEnglish}) {
        const QString time = read(stamp.trimmed());
        if (!time.isEmpty()) {
            known = true;
            return time;
        }
    }
    known = false;
    return QStringLiteral("1970:01:01 00:00:00");
}

} // namespace lumo::kpx
