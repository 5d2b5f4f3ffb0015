// SPDX-License-Identifier: Apache-2.0
// Finds scale, rotation and translation between two lists of points of which some
// pairs may be wrong: align_points POINTS.csv (x1,y1,z1,x2,y2,z2 in the first line)
#include <QCoreApplication>
#include <lumo/core/init/alignment.h>
#include <lumo/core/services/core_services.h>

#include <cstdio>
#include <iostream>

namespace {

void print(const lumo::Alignment& alignment)
{
    const lumo::math::RigidTransform3D& transform = alignment.transform;
    const Eigen::IOFormat row(10, Eigen::DontAlignCols, " ", "\n  ");
    std::cout << "scale: " << transform.scale() << '\n'
              << "rotation:\n  " << transform.rotation().matrix().format(row) << '\n'
              << "translation: " << transform.translation().transpose().format(row) << '\n'
              << "inliers: " << alignment.inliers << " of " << alignment.weights.size() << ", rms "
              << alignment.rmsInliers << '\n';
    for (std::size_t i = 0; i < alignment.weights.size(); ++i) {
        if (alignment.weights[i] < lumo::kInlierWeight) {
            std::cout << "pair " << i + 1 << " does not fit: off by "
                      << alignment.residuals[i].norm() << '\n';
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs("usage: align_points POINTS.csv\n", stderr);
        return 2;
    }
    lumo::CoreServices::instance(); // once, before all else

    lumo::PointPairs pairs; // or fill points1 and points2 yourself
    lumo::Alignment alignment;
    QString error;
    if (!lumo::readPointPairs(arguments[1], pairs, error) ||
        !lumo::align(pairs, lumo::AlignmentOptions{}, alignment, error)) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(arguments[1]), qPrintable(error));
        return 1;
    }
    if (lumo::isArbitrary(alignment.degeneracy)) {
        std::fprintf(
            stderr, "%s: the points leave the transform open: %s\n", qPrintable(arguments[1]),
            qPrintable(lumo::text::toString(alignment.degeneracy)));
        return 1;
    }
    print(alignment);
    return 0;
}
