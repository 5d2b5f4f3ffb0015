// SPDX-License-Identifier: Apache-2.0
#include "calibration_serial_number.h"

#include <QRegularExpression>
#include <QStringList>

#include <array>

namespace lumo::exif {
namespace {

/// What captures a serial number, in each form of text; lines are matched one by one.
const std::array<QRegularExpression, 3>& forms()
{
    const QString key = QStringLiteral("serial(?:[ _-]?(?:number|no))?");
    // With a digit that is not 0: zeros stand for no number, and words are none.
    const QString value = QStringLiteral("((?=[A-Z0-9.-]*[1-9])[A-Z0-9][A-Z0-9.-]{0,63})");
    const QString start = QStringLiteral("^[ \\t]*[\"']?");
    const QString end = QStringLiteral("[\"']?[ \\t]*[,;]?[ \\t]*$");
    const auto compiled = [](const QString& pattern) {
        return QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption);
    };
    static const std::array<QRegularExpression, 3> all = {
        compiled(
            start + key + QStringLiteral("[\"']?(?:[ \\t]*[:=][ \\t]*|[ \\t]+)[\"']?") + value +
            end),
        compiled(QStringLiteral("<%1>[ \\t]*%2[ \\t]*</").arg(key, value)),
        compiled(QStringLiteral("<[A-Z](?:[^<>]*[ \\t])?%1=[\"']%2[\"']").arg(key, value)),
    };
    return all;
}

} // namespace

QString findCalibrationSerialNumber(const QByteArray& content, QString& error)
{
    constexpr int kMaxLineLength = 4096; // bounds the work on a line
    if (content.contains('\0')) {
        error = QStringLiteral("not a text file");
        return {};
    }
    QStringList found;
    for (const QByteArray& bytes : content.split('\n')) {
        const QByteArray line = bytes.left(kMaxLineLength).trimmed();
        if (!line.toLower().contains("serial")) {
            continue;
        }
        for (const QRegularExpression& form : forms()) {
            const QRegularExpressionMatch match = form.match(QString::fromLatin1(line));
            if (match.hasMatch()) {
                found.append(match.captured(1));
            }
        }
    }
    found.removeDuplicates();
    if (found.size() != 1) {
        error = found.isEmpty() ? QStringLiteral("names no serial number")
                                : QStringLiteral("names several serial numbers: ") +
                                      found.mid(0, 2).join(QStringLiteral(", "));
        return {};
    }
    return found.front();
}

} // namespace lumo::exif
