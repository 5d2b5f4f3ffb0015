// SPDX-License-Identifier: Apache-2.0
#include "fuzz_target.h"
#include "lumo/core/init/point_pairs.h"

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace lumo;
    using fuzz::require;
    QBuffer device;
    device.setData(fuzz::toBytes(data, size));
    device.open(QIODevice::ReadOnly);
    PointPairs pairs;
    QString error;
    if (!readPointPairs(device, pairs, error)) {
        require(error.startsWith(QLatin1String("line ")), "an error names the line", error);
        require(pairs.points1.empty(), "a failed read leaves the pairs alone");
        return 0;
    }
    const std::size_t count = pairs.points1.size();
    require(pairs.points2.size() == count, "each point has its partner");
    require(pairs.sigmas.empty() || pairs.sigmas.size() == count, "deviations for all or none");
    require(pairs.names.empty() || pairs.names.size() == count, "names for all or none");
    for (std::size_t i = 0; i < count; ++i) {
        require(
            pairs.points1[i].allFinite() && pairs.points2[i].allFinite(), "coordinates are finite");
    }
    return 0;
}
