// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/alignment_report.h"

#include "lumo/core/init/histogram.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <stdexcept>

static void initialiseResource()
{
    Q_INIT_RESOURCE(alignment_report);
}

namespace lumo {
namespace {

constexpr std::size_t kBins = 41; // odd, so that one bin has zero in its middle

QByteArray pageTemplate()
{
    initialiseResource();
    QFile file(QStringLiteral(":/lumo/alignment_report.html"));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::logic_error("the report's page is not built in");
    }
    return file.readAll();
}

QJsonArray toJson(const Eigen::Vector3d& vector)
{
    return {vector.x(), vector.y(), vector.z()};
}

QJsonArray toJson(const Eigen::Matrix3d& matrix)
{
    QJsonArray rows;
    for (int row = 0; row < 3; ++row) {
        rows.append(toJson(Eigen::Vector3d(matrix.row(row).transpose())));
    }
    return rows;
}

/// The residuals on one axis; the range is that of the inliers, and what is
/// beyond it counts at its ends.
QJsonObject histogram(const Alignment& alignment, int axis)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < alignment.residuals.size(); ++i) {
        if (alignment.weights[i] >= kInlierWeight) {
            largest = std::max(largest, std::abs(alignment.residuals[i][axis]));
        }
    }
    Histogram counts(-largest, largest, kBins);
    for (const Eigen::Vector3d& residual : alignment.residuals) {
        // Far outliers would be taken for missing data.
        counts.addDatum(std::clamp(residual[axis], -largest, largest));
    }
    QJsonArray bins;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        bins.append(static_cast<double>(counts[i]));
    }
    return {{"min", counts.min()}, {"max", counts.max()}, {"bins", bins}};
}

/// One row a pair: name or number, point 1, residual, its length, weight.
QJsonArray points(const PointPairs& pairs, const Alignment& alignment)
{
    QJsonArray rows;
    for (std::size_t i = 0; i < pairs.points1.size(); ++i) {
        const Eigen::Vector3d& point = pairs.points1[i];
        const Eigen::Vector3d& residual = alignment.residuals[i];
        rows.append(QJsonArray{
            pairs.names.empty() ? QString::number(i + 1) : pairs.names[i], point.x(), point.y(),
            point.z(), residual.x(), residual.y(), residual.z(), residual.norm(),
            alignment.weights[i]});
    }
    return rows;
}

QJsonObject content(const QString& title, const PointPairs& pairs, const Alignment& alignment)
{
    const math::RigidTransform3D& transform = alignment.transform;
    return {
        {"title", title},
        {"scale", transform.scale()},
        {"rotation", toJson(transform.rotation().matrix())},
        {"anglesDegrees", toJson(transform.rotation().eulerAnglesAsDegree())},
        {"translation", toJson(transform.translation())},
        {"inlierRatio", alignment.inlierRatio},
        {"inliers", static_cast<double>(alignment.inliers)},
        {"rmsInliers", alignment.rmsInliers},
        {"degeneracy", text::toString(alignment.degeneracy)},
        {"histograms",
         QJsonArray{histogram(alignment, 0), histogram(alignment, 1), histogram(alignment, 2)}},
        {"points", points(pairs, alignment)}};
}

} // namespace

QByteArray alignmentReport(
    const QString& title, const PointPairs& pairs, const Alignment& alignment)
{
    QByteArray data =
        QJsonDocument(content(title, pairs, alignment)).toJson(QJsonDocument::Compact);
    // A text of the data must not be able to end the element that holds it.
    data.replace("<", "\\u003c");
    return pageTemplate().replace("/*DATA*/null", data);
}

} // namespace lumo
