// SPDX-License-Identifier: Apache-2.0
#include "exif_text.h"

#include <QTextCodec>

namespace lumo::exif {

QString cleanedText(const QString& text, bool* hadControls)
{
    QString result;
    bool found = false;
    for (const QChar character : text.trimmed()) {
        if (character.isSpace()) {
            result += QLatin1Char(' ');
        } else if (character.category() == QChar::Other_Control) {
            found = true;
        } else {
            result += character;
        }
    }
    if (hadControls != nullptr) {
        *hadControls = found;
    }
    return result.trimmed();
}

QString decodedText(const QByteArray& bytes)
{
    const int end = bytes.indexOf('\0');
    const int length = end < 0 ? bytes.size() : end;
    QTextCodec::ConverterState state;
    const QString utf8 =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), length, &state);
    const bool valid = state.invalidChars == 0 && state.remainingChars == 0;
    return valid ? utf8 : QString::fromLatin1(bytes.constData(), length);
}

} // namespace lumo::exif
