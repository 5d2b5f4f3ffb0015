// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/rig_db_match.h"
#include "rig_exhaustive_search.h"

#include <benchmark/benchmark.h>

#include <numeric>
#include <random>

namespace lumo {
namespace {

/// Cameras of one model that nothing tells apart: every order is possible.
rig_filter_t alikeCameras(std::size_t count)
{
    rig_filter_t filter(count, "rig", RigCameraDetection::ByDetectionString);
    for (rig_camera_filter_t& camera : filter.cameras) {
        camera[RigKey::ExifString] = "Cam_8.8_5472x3648";
    }
    return filter;
}

/// The same with a folder each, in random order: one order is possible.
rig_filter_t shuffledCameras(std::size_t count)
{
    rig_filter_t filter = alikeCameras(count);
    std::vector<std::size_t> folders(count);
    std::iota(folders.begin(), folders.end(), std::size_t{0});
    std::shuffle(folders.begin(), folders.end(), std::mt19937(1));
    for (std::size_t i = 0; i < count; ++i) {
        filter.cameras[i][RigKey::DetectionString] = QString("folder %1").arg(folders[i]);
    }
    return filter;
}

using MakeFilter = rig_filter_t (*)(std::size_t count);
using Match = rigdb::RigDBMatch (*)(const RigModel&, const rig_filter_t&, bool fixedOrder);

void matchInFreeOrder(benchmark::State& state, Match match, MakeFilter makeFilter)
{
    const rig_filter_t filter = makeFilter(static_cast<std::size_t>(state.range(0)));
    rig_filter_t sorted = filter;
    std::sort(sorted.cameras.begin(), sorted.cameras.end(), [](const auto& a, const auto& b) {
        return a[RigKey::DetectionString] < b[RigKey::DetectionString];
    });
    const RigModel rig = RigModel::makeRigModel(sorted);
    for (auto iteration : state) {
        benchmark::DoNotOptimize(match(rig, filter, false));
    }
}

// Ten cameras alike need 1.4 GB in the exhaustive search, eleven ten times that.
BENCHMARK_CAPTURE(matchInFreeOrder, alike, &rigdb::matchRigDB, &alikeCameras)->DenseRange(2, 16);
BENCHMARK_CAPTURE(matchInFreeOrder, alikeExhaustive, &exhaustiveMatch, &alikeCameras)
    ->DenseRange(2, 10)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(matchInFreeOrder, shuffled, &rigdb::matchRigDB, &shuffledCameras)
    ->DenseRange(2, 16);

/// Rigs of 2 to 11 cameras; one in ten has as many as the filter, and one of
/// these fits it.
void findBestRigModel(benchmark::State& state)
{
    constexpr std::size_t kFilterCameras = 5;
    const auto count = static_cast<std::size_t>(state.range(0));
    cameradb::CameraDBData data;
    for (std::size_t i = 0; i < count; ++i) {
        rig_filter_t cameras = shuffledCameras(2 + i % 10);
        cameras.name = QString("rig %1").arg(i);
        const bool fits = i == count / 20 * 10 + kFilterCameras - 2;
        for (rig_camera_filter_t& camera : cameras.cameras) {
            camera[RigKey::ExifString] = fits ? "Wanted" : QString("Cam %1").arg(i);
        }
        data.rigs.emplace(cameras.name, RigModel::makeRigModel(cameras));
    }
    CameraModelDb store;
    store.setInternalData(std::move(data));
    rig_filter_t filter = shuffledCameras(kFilterCameras);
    filter.name.clear();
    for (rig_camera_filter_t& camera : filter.cameras) {
        camera[RigKey::ExifString] = "wanted";
    }
    RigModel best;
    for (auto iteration : state) {
        if (!store.findBestRigModel(filter, best)) {
            state.SkipWithError("no rig fits");
        }
    }
}

BENCHMARK(findBestRigModel)->RangeMultiplier(10)->Range(100, 10000)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace lumo
