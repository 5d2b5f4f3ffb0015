// SPDX-License-Identifier: Apache-2.0
#include "commands/align_command.h"

#include "lumo/core/init/alignment.h"
#include "lumo/core/init/alignment_report.h"
#include "lumo/foundation/file.h"
#include "show/text_table.h"

#include <QByteArray>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace lumo::program {
namespace {

QJsonArray toJson(const Eigen::Vector3d& vector)
{
    return {vector.x(), vector.y(), vector.z()};
}

QJsonObject toJson(const QString& file, const Alignment& alignment)
{
    const math::RigidTransform3D& transform = alignment.transform;
    QJsonArray rotation;
    for (int row = 0; row < 3; ++row) {
        rotation.append(toJson(Eigen::Vector3d(transform.rotation().matrix().row(row))));
    }
    QJsonArray weights;
    for (const double weight : alignment.weights) {
        weights.append(weight);
    }
    return {
        {"file", file},
        {"scale", transform.scale()},
        {"rotation", rotation},
        {"omegaPhiKappa", toJson(transform.rotation().angles())},
        {"translation", toJson(transform.translation())},
        {"inlierRatio", alignment.inlierRatio},
        {"weights", weights},
        {"rmsInliers", alignment.rmsInliers},
        {"degeneracy", text::toString(alignment.degeneracy)}};
}

QString number(double value)
{
    return QString::number(value, 'g', 12);
}

QString numbers(const Eigen::Vector3d& vector)
{
    return number(vector.x()) + ' ' + number(vector.y()) + ' ' + number(vector.z());
}

void show(const Alignment& alignment)
{
    const math::RigidTransform3D& transform = alignment.transform;
    std::vector<QStringList> rows{
        {"what", "value"},
        {"scale (set 1 / set 2)", number(transform.scale())},
        {"omega phi kappa (degrees)", numbers(transform.rotation().eulerAnglesAsDegree())}};
    for (int row = 0; row < 3; ++row) {
        rows.push_back(
            {QStringLiteral("rotation, row %1").arg(row + 1),
             numbers(transform.rotation().matrix().row(row))});
    }
    rows.push_back({"translation (unit of set 1)", numbers(transform.translation())});
    rows.push_back(
        {"inliers",
         QStringLiteral("%1 of %2").arg(alignment.inliers).arg(alignment.weights.size())});
    rows.push_back({"inlier ratio (mean weight)", number(alignment.inlierRatio)});
    rows.push_back({"rms of the inliers (unit of set 1)", number(alignment.rmsInliers)});
    rows.push_back({"degeneracy", text::toString(alignment.degeneracy)});
    printText(formatTable(rows));
}

QString reasonOf(Degeneracy degeneracy)
{
    switch (degeneracy) {
    case Degeneracy::Coincident:
        return QStringLiteral("coincident: all points of a set are one, so rotation and scale "
                              "are free");
    case Degeneracy::TooFew:
        return QStringLiteral("tooFew: fewer than three different points, so the rotation is free");
    case Degeneracy::Collinear:
        return QStringLiteral("collinear: the points that fit lie on a line, so the roll about it "
                              "is free");
    case Degeneracy::Coplanar:
        return QStringLiteral("coplanar: the points that fit lie in a plane");
    case Degeneracy::Mirrored:
        return QStringLiteral("mirrored: a reflection would fit clearly better; look at the order "
                              "and the signs of the axes");
    case Degeneracy::None:
        break;
    }
    return {};
}

/// The reason for a result. With few pairs a wrong one cannot be found, and may make the
/// others look as if they lie on a line.
QString reasonOf(const Alignment& alignment)
{
    const QString reason = reasonOf(alignment.degeneracy);
    return alignment.degeneracy == Degeneracy::Collinear &&
                   alignment.weights.size() < kFewestPairsForOutliers
               ? reason + QStringLiteral(" (or one of the pairs is wrong: among fewer than %1 "
                                         "that is not found)")
                              .arg(kFewestPairsForOutliers)
               : reason;
}

/// A share of outliers that is above the assumed one by this or less does no harm.
constexpr double kNotWorthSaying = 0.02;

/// Prints remarks that the user should read before using the result.
void warn(const AlignRequest& request, const Alignment& alignment)
{
    if (alignment.degeneracy != Degeneracy::None) {
        sayRemark(request.pointFile, reasonOf(alignment));
    }
    const auto pairs = static_cast<double>(alignment.weights.size());
    const double outliers = 1.0 - static_cast<double>(alignment.inliers) / pairs;
    if (outliers > request.outlierRatio + kNotWorthSaying) {
        sayRemark(
            request.pointFile,
            QStringLiteral("more outliers (%1 %) than were assumed (%2 %): see --outliers")
                .arg(100.0 * outliers, 0, 'f', 1)
                .arg(100.0 * request.outlierRatio, 0, 'f', 1));
    }
}

ExitCode refuse(
    const AlignRequest& request, const Alignment& alignment, const CommonOptions& options)
{
    const QString reason =
        reasonOf(alignment) + QStringLiteral("; --force gives one of the transforms that fit");
    if (options.json) {
        printJsonLine(
            {{"file", request.pointFile},
             {"degeneracy", text::toString(alignment.degeneracy)},
             {"error", reason}});
    }
    return failed(request.pointFile, reason);
}

ExitCode write(const QString& path, const QByteArray& content)
{
    QString error;
    return path.isEmpty() || file::replaceAtomically(path, content, error) ? AllDone
                                                                           : failed(path, error);
}

/// What is read, or written before, and would be replaced; empty if nothing is.
QString pathGivenTwice(const AlignRequest& request)
{
    // Links and relative paths may give one file two names; a new file has no canonical one.
    const auto whole = [](const QString& path) {
        const QFileInfo file(path);
        return file.exists() ? file.canonicalFilePath() : file.absoluteFilePath();
    };
    QStringList paths{whole(request.pointFile)};
    for (const QString& path : {request.jsonFile, request.reportFile}) {
        if (!path.isEmpty() && paths.contains(whole(path))) {
            return path;
        }
        paths.append(whole(path));
    }
    return {};
}

ExitCode give(
    const AlignRequest& request, const PointPairs& pairs, const Alignment& alignment,
    const CommonOptions& options)
{
    warn(request, alignment);
    const QJsonObject json = toJson(request.pointFile, alignment);
    if (options.json) {
        printJsonLine(json);
    } else {
        show(alignment);
    }
    const ExitCode written = write(request.jsonFile, QJsonDocument(json).toJson());
    if (request.reportFile.isEmpty()) {
        return written;
    }
    const QByteArray report =
        alignmentReport(QFileInfo(request.pointFile).fileName(), pairs, alignment);
    const ExitCode reported = write(request.reportFile, report);
    return written == AllDone ? reported : written;
}

} // namespace

ExitCode alignPoints(const AlignRequest& request, const CommonOptions& options)
{
    if (const QString path = pathGivenTwice(request); !path.isEmpty()) {
        return failed(path, QStringLiteral("is given twice: this run would overwrite it"), options);
    }
    PointPairs pairs;
    Alignment alignment;
    QString error;
    const AlignmentOptions settings{request.outlierRatio, request.samplePairs, request.seed};
    if (!readPointPairs(request.pointFile, pairs, error) ||
        !align(pairs, settings, alignment, error)) {
        return failed(request.pointFile, error, options);
    }
    if (isArbitrary(alignment.degeneracy) && !request.force) {
        return refuse(request, alignment, options);
    }
    return give(request, pairs, alignment, options);
}

} // namespace lumo::program
