// SPDX-License-Identifier: Apache-2.0
#include "lumo/cameradata/xml_document.h"
#include "lumo/core/cameraInfo/camera_db_data.h"
#include "lumo/core/cameraInfo/lumo_camera_db_io.h"
#include "lumo/core/cameraInfo/lumo_camera_db_xml.h"
#include "lumo/core/cameraInfo/lumo_text_file_io.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/core/xml/lumo_xml_validator.h"

#include <QCoreApplication>
#include <QDomDocument>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <iostream>

// Databases of perspective cameras with one vignetting model and RGB bands, all
// with their usual digits. The argument is the number of cameras.
namespace lumo {
namespace {

cameradb::CameraDBData makeDatabase(std::int64_t count)
{
    cameradb::CameraDBData data;
    for (std::int64_t i = 0; i < count; ++i) {
        const double variation = static_cast<double>(i) * 1e-5;
        CameraModelFromDB model;
        CameraParams& params = model.params;
        params.name = QStringLiteral("Maker Model %1_8.8_5472x3648").arg(i, 5, 10, QChar('0'));
        params.setImageSize(5472, 3648);
        params.pixelSize = 0.00241228;
        params.principalPointXMm = 6.612;
        params.principalPointYMm = 4.3871;
        params.lensType = LensType::Perspective;
        params.perspective = {8.8 + variation, 6, -0.0079, 0.0104, -0.0049, 0.00012, -0.00028};
        params.vignetting[280] = VignettingData(
            Eigen::Vector3d(1.0, 0.0021, -1.32e-05), 0.0, 0.0, VignettingType::Polynomial);
        params.source = CameraSource::UserDatabase;
        data.cameras.emplace(params.name, model);
    }
    return data;
}

void orFail(bool worked, const QString& error)
{
    if (!worked) {
        std::cerr << qPrintable(error) << '\n';
        std::exit(1);
    }
}

QString documentOf(const cameradb::CameraDBData& data)
{
    QString text;
    QString error;
    orFail(cameradb::documentText({}, data, text, error), error);
    return text;
}

/// A file with the text, in a folder that goes with it.
class File
{
public:
    explicit File(const QString& text)
    {
        TextFileIO io;
        io.content() = text;
        orFail(io.writeFile(path(), false), path());
    }

    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("db.xml")); }

private:
    QTemporaryDir m_folder;
};

/// What any program that uses a document tree has to spend.
void parseToDom(benchmark::State& state)
{
    const QString text = documentOf(makeDatabase(state.range(0)));
    for (auto _ : state) {
        QXmlStreamReader reader(text);
        QDomDocument document;
        orFail(document.setContent(&reader, false), QStringLiteral("no XML"));
        benchmark::DoNotOptimize(document);
    }
}

void loadXml(benchmark::State& state)
{
    const File file(documentOf(makeDatabase(state.range(0))));
    for (auto _ : state) {
        TextFileIO io;
        QDomDocument document;
        QString error;
        cameradb::CameraDBData data;
        bool modified = false;
        orFail(io.readFile(file.path(), false), file.path());
        orFail(xml::domFromString(io.content(), document, error), error);
        orFail(cameradb::getXML(document, true, false, true, data, modified), file.path());
        benchmark::DoNotOptimize(data);
    }
}

void saveXml(benchmark::State& state)
{
    const cameradb::CameraDBData data = makeDatabase(state.range(0));
    const File file(QStringLiteral("old"));
    for (auto _ : state) {
        TextFileIO io;
        io.content() = documentOf(data);
        orFail(io.writeFile(file.path(), false), file.path());
    }
}

void splitText(benchmark::State& state)
{
    const QString text = cameradb::writeTextDB(makeDatabase(state.range(0)));
    for (auto _ : state) {
        for (const QString& line : text.split(QLatin1Char('\n'))) {
            benchmark::DoNotOptimize(line.split(QLatin1Char(',')));
        }
    }
}

void readText(benchmark::State& state)
{
    const QString text = cameradb::writeTextDB(makeDatabase(state.range(0)));
    for (auto _ : state) {
        cameradb::CameraDBData data;
        QString error;
        orFail(cameradb::readTextDB(text, data, error), error);
        benchmark::DoNotOptimize(data);
    }
}

/// The schema is loaded once; see the numbers of cameras for how time grows.
void validate(benchmark::State& state)
{
    const File file(documentOf(makeDatabase(state.range(0))));
    xml::XmlValidator validator;
    QString error;
    orFail(validator.loadXsd(cameraDbSchemaPath(), error), error);
    for (auto _ : state) {
        orFail(validator.validateXml(file.path(), error), error);
    }
}

constexpr std::int64_t kCameras = 10000;

BENCHMARK(parseToDom)->Arg(kCameras)->Unit(benchmark::kMillisecond);
BENCHMARK(loadXml)->Arg(kCameras)->Unit(benchmark::kMillisecond);
BENCHMARK(saveXml)->Arg(kCameras)->Unit(benchmark::kMillisecond);
BENCHMARK(splitText)->Arg(kCameras)->Unit(benchmark::kMillisecond);
BENCHMARK(readText)->Arg(kCameras)->Unit(benchmark::kMillisecond);
BENCHMARK(validate)->Arg(kCameras / 4)->Arg(kCameras)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace lumo

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
