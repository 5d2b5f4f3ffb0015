// SPDX-License-Identifier: Apache-2.0
#include "show/identification_text.h"

#include "show/camera_text.h"
#include "show/text_table.h"

#include <QJsonArray>

namespace lumo::program {
namespace {

/// How a claim was computed, and why it was refused.
QString remark(const PixelSizeClaim& claim)
{
    return claim.doubt.isEmpty() ? claim.formula
                                 : QStringLiteral("%1: %2").arg(claim.doubt, claim.formula);
}

/// The verdict, with the distance to the pixel size where one is meant.
QString verdict(const PixelSizeClaim& claim)
{
    return claim.sigmasOff > 0.0 && claim.verdict != ClaimVerdict::Taken
               ? QStringLiteral("%1, %2 sigma")
                     .arg(toString(claim.verdict))
                     .arg(claim.sigmasOff, 0, 'f', 1)
               : toString(claim.verdict);
}

QString databaseText(const CandidateModel& candidate)
{
    return candidate.own ? QStringLiteral("user") : QStringLiteral("internal");
}

QString indented(const std::vector<QStringList>& rows)
{
    QString text;
    for (const QString& line : formatTable(rows).split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        text += QStringLiteral("  ") + line + QLatin1Char('\n');
    }
    return text;
}

QString shownSize(double mm)
{
    return mm > 0.0 ? QString::number(mm * kMicrometresPerMillimetre, 'f', 3) : QString();
}

} // namespace

QJsonObject explanationJson(
    const ImageIdentification& found, const std::vector<CandidateModel>& candidates)
{
    QJsonArray models;
    for (const CandidateModel& candidate : candidates) {
        models.append(QJsonObject{
            {"name", candidate.name},
            {"serialNumber", candidate.serialNumber},
            {"database", databaseText(candidate)},
            {"taken", candidate.taken},
            {"rule", candidate.rule}});
    }
    QJsonArray evidence;
    for (const PixelSizeClaim& claim : found.evidence) {
        evidence.append(QJsonObject{
            {"from", toString(claim.from)},
            {"pixelSizeUm", shownNumber(claim.pixelSizeMm * kMicrometresPerMillimetre)},
            {"sigmaUm", shownNumber(claim.sigmaMm * kMicrometresPerMillimetre)},
            {"sigmaReason", claim.reason},
            {"formula", claim.formula},
            {"verdict", toString(claim.verdict)},
            {"sigmasOff", shownNumber(claim.sigmasOff)},
            {"remark", claim.doubt}});
    }
    return {{"candidates", models}, {"evidence", evidence}, {"mode", found.modeReason}};
}

QString explanationText(
    const QString& file, const ImageIdentification& found,
    const std::vector<CandidateModel>& candidates)
{
    const QString size = shownSize(found.camera.params.pixelSize);
    QString text = formatTable({{file}});
    text += indented(
        {{"camera", found.modelName.isEmpty() ? QStringLiteral("none") : found.modelName,
          found.source ? text::toString(*found.source) : QStringLiteral("none")},
         {"pixel um",
          size.isEmpty() ? QStringLiteral("none")
                         : QStringLiteral("%1 +- %2").arg(size, shownSize(found.pixelSizeSigmaMm)),
          found.reason.isEmpty() ? toString(found.pixelSizeFrom) : found.reason},
         {"mode", toString(found.mode), found.modeReason}});
    std::vector<QStringList> rows{{"candidate", "database", "verdict", "rule"}};
    for (const CandidateModel& candidate : candidates) {
        QString name = candidate.name;
        if (!candidate.serialNumber.isEmpty()) {
            name += QStringLiteral(" (%1)").arg(candidate.serialNumber);
        }
        rows.push_back(
            {name, databaseText(candidate),
             candidate.taken ? QStringLiteral("taken") : QStringLiteral("refused"),
             candidate.rule});
    }
    if (rows.size() > 1) {
        text += indented(rows);
    }
    rows = {{"evidence", "pixel um", "sigma um", "verdict", "how", "sigma is of"}};
    for (const PixelSizeClaim& claim : found.evidence) {
        rows.push_back(
            {toString(claim.from), shownSize(claim.pixelSizeMm), shownSize(claim.sigmaMm),
             verdict(claim), remark(claim), claim.reason});
    }
    if (rows.size() > 1) {
        text += indented(rows);
    }
    for (const QString& disagreement : found.disagreements) {
        text += QStringLiteral("  disagreement: ") + disagreement + QLatin1Char('\n');
    }
    return text + QLatin1Char('\n');
}

} // namespace lumo::program
