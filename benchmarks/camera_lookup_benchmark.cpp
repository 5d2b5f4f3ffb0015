// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/exif_info.h"
#include "lumo/core/cameraInfo/camera_model_db.h"

#include <benchmark/benchmark.h>

#ifdef LUMO_BENCHMARK_LENSFUN
#include <lensfun/lensfun.h>
#endif

#include <cstdlib>
#include <iostream>
#include <vector>

// From an image's identifiers to its camera model, in a store of 10,000 models,
// beside one lookup in an ordered map of the same models, and beside lensfun's search
// in its own database where it is installed (of some 1,000 cameras, by maker and model
// alone). Half of the images name their lens, so that the second identifier decides.
namespace lumo {
namespace {

constexpr int kCameras = 10000;

QString modelName(int i)
{
    return QStringLiteral("Model %1").arg(i, 5, 10, QChar('0'));
}

CameraModelDb makeStore()
{
    cameradb::CameraDBData data;
    for (int i = 0; i < kCameras; ++i) {
        CameraModelFromDB model;
        model.params.name = modelName(i) + QStringLiteral("_8.8_5472x3648");
        model.params.setImageSize(5472, 3648);
        model.params.pixelSize = 0.0024;
        model.params.perspective.focalLengthMm = 8.8;
        model.params.source = CameraSource::InternalDatabase;
        data.cameras.emplace(model.params.name, model);
        if (i % 10 == 0) {
            data.mappings.emplace(
                modelName(i) + QStringLiteral("S_8.8_5472x3648"), model.params.name);
        }
    }
    CameraModelDb store;
    store.setInternalData(data);
    return store;
}

/// In an order that jumps about, as images of many cameras would.
std::vector<ExifID> makeIdentifiers()
{
    constexpr int kStep = 7919;
    std::vector<ExifID> identifiers;
    for (int i = 0; i < kCameras; ++i) {
        ExifInfo exif;
        exif.model = modelName(static_cast<int>((static_cast<long>(i) * kStep) % kCameras));
        exif.lensModel = i % 2 == 0 ? QString() : QStringLiteral("Some Lens 8.8 mm");
        exif.focalLengthMm = 8.8;
        exif.imageWidth = 5472;
        exif.imageHeight = 3648;
        identifiers.push_back(exif.exifId());
    }
    return identifiers;
}

const CameraModelDb& store()
{
    static const CameraModelDb result = makeStore();
    return result;
}

const std::vector<ExifID>& identifiers()
{
    static const std::vector<ExifID> result = makeIdentifiers();
    return result;
}

template <typename Look>
void forEachIdentifier(benchmark::State& state, Look look)
{
    std::size_t next = 0;
    for (auto _ : state) {
        const ExifID& id = identifiers()[next];
        next = next + 1 == identifiers().size() ? 0 : next + 1;
        if (!look(id)) {
            std::cerr << qPrintable(id.first) << ": not found\n";
            std::exit(1);
        }
    }
}

void bareMapLookup(benchmark::State& state)
{
    const auto& cameras = store().internalData().cameras;
    forEachIdentifier(state, [&cameras](const ExifID& id) {
        const auto found = cameras.find(id.second);
        benchmark::DoNotOptimize(found);
        return found != cameras.end();
    });
}

void resolveByReference(benchmark::State& state)
{
    forEachIdentifier(state, [](const ExifID& id) {
        const StoredCameraModel found = store().storedCameraModel(id, QString(), false);
        benchmark::DoNotOptimize(found);
        return static_cast<bool>(found);
    });
}

void resolveAndCopy(benchmark::State& state)
{
    forEachIdentifier(state, [](const ExifID& id) {
        CameraModelFromDB model;
        const bool found = store().findCameraModel(id, QString(), model, false);
        benchmark::DoNotOptimize(model);
        return found;
    });
}

BENCHMARK(bareMapLookup);
BENCHMARK(resolveByReference);
BENCHMARK(resolveAndCopy);

#ifdef LUMO_BENCHMARK_LENSFUN
void lensfunSearch(benchmark::State& state)
{
    lfDatabase* database = lf_db_new();
    if (lf_db_load(database) != LF_NO_ERROR) {
        state.SkipWithError("lensfun's database cannot be loaded");
    }
    for (auto _ : state) {
        const lfCamera** cameras = lf_db_find_cameras(database, "SONY", "ILCE-7RM2");
        benchmark::DoNotOptimize(cameras);
        lf_free(cameras);
    }
    lf_db_destroy(database);
}
BENCHMARK(lensfunSearch);
#endif

} // namespace
} // namespace lumo

BENCHMARK_MAIN();
