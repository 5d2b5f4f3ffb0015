// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/exif_info.h"

#include <QRegularExpression>

#include <algorithm>

namespace lumo {
namespace {

/// A part of an identifier. Replaces characters that separate parts ("_") or that are not
/// allowed in a camera name.
QString identifierPart(const QString& text)
{
    QString result = text.trimmed();
    for (QChar& character : result) {
        const bool kept = character.isLetterOrNumber() || character == QLatin1Char('-') ||
                          character == QLatin1Char('.') || character == QLatin1Char('+') ||
                          character == QLatin1Char(' ');
        if (!kept) {
            character = QLatin1Char('-');
        }
    }
    return result;
}

} // namespace

bool ExifInfo::empty() const
{
    return make.isEmpty() && model.isEmpty() && lensModel.isEmpty() && focalLengthMm == 0.0 &&
           imageWidth == 0 && imageHeight == 0;
}

ExifID ExifInfo::exifId() const
{
    const QString key = identifierPart(model.trimmed().isEmpty() ? make : model);
    if (key.isEmpty()) {
        return {};
    }
    // The larger side first: an image in portrait format is from the same camera.
    const QString tail = QStringLiteral("_%1_%2x%3")
                             .arg(focalLengthMm, 0, 'f', 1)
                             .arg(std::max(imageWidth, imageHeight))
                             .arg(std::min(imageWidth, imageHeight));
    const QString lens = identifierPart(lensModel);
    return {lens.isEmpty() ? key + tail : key + QLatin1Char('_') + lens + tail, key + tail};
}

QStringList tokenizeExifId(const QString& exifId)
{
    // The key is greedy: of several "_" the last ones separate the numbers.
    static const QRegularExpression form(
        QStringLiteral("^(.+)_(\\d+)\\.(\\d+)_(\\d+)x(\\d+)$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = form.match(exifId);
    if (!match.hasMatch()) {
        return exifId.split(QLatin1Char('_'));
    }
    return match.capturedTexts().mid(1);
}

} // namespace lumo
