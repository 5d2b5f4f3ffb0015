// SPDX-License-Identifier: Apache-2.0
// The file of a text database: its encoding, and the shipped one.
#include "cameraInfo/textdb/csv.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/foundation/file.h"

#include <QByteArray>
#include <QTextCodec>

#include <algorithm>

namespace lumo::cameradb {
namespace {

constexpr qint64 kMaxBytes = qint64(256) * 1024 * 1024;

/// Decodes UTF-8; false if the bytes are not.
bool decode(const QByteArray& bytes, QString& text)
{
    const QTextCodec* const codec = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state;
    text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

/// The place of the first byte that is not UTF-8.
csv::Place invalidPlace(const QByteArray& bytes)
{
    csv::Place place;
    QString decoded;
    for (const QByteArray& line : bytes.split('\n')) {
        if (!decode(line, decoded)) {
            place.column = std::max(decoded.indexOf(QChar::ReplacementCharacter), 0) + 1;
            return place;
        }
        ++place.line;
    }
    return place;
}

csv::Place placeOf(const QString& text, int position)
{
    const QString before = text.left(position);
    return {
        before.count(QLatin1Char('\n')) + 1,
        position - (before.lastIndexOf(QLatin1Char('\n')) + 1) + 1};
}

bool readText(const QString& path, QString& text, QString& reason)
{
    QByteArray bytes;
    if (!file::read(path, kMaxBytes, bytes, reason)) {
        return false;
    }
    if (!decode(bytes, text)) {
        reason = csv::Fault{invalidPlace(bytes), QStringLiteral("not UTF-8")}.toString();
        return false;
    }
    const int nul = text.indexOf(QChar::Null);
    if (nul >= 0) {
        reason = csv::Fault{placeOf(text, nul), QStringLiteral("a NUL character")}.toString();
        return false;
    }
    return true;
}

} // namespace

bool loadTextDB(const QString& path, CameraDBData& data, QString& error)
{
    QString text;
    QString reason;
    if (!readText(path, text, reason) || !readTextDB(text, data, reason)) {
        error = path + QStringLiteral(": ") + reason;
        return false;
    }
    return true;
}

QString shippedTextDBPath()
{
    return QStringLiteral(":/lumo/camera_db.csv");
}

} // namespace lumo::cameradb
