// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/cameraInfo/camera_model_db.h"
#include "lumo/core/cameraInfo/image_identification.h"
#include "lumo/core/cameraInfo/text_db.h"
#include "lumo/exif/read_exif_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <iomanip>
#include <iostream>
#include <limits>

// Finding the cameras of 2,000 image files, beside a bare loop that reads their
// metadata with exiv2, and beside exiftool where it is installed. The files are
// copies of those in a folder (the first argument; the samples by default), read
// before, so that the disk plays no part. The fastest of three runs counts.
namespace lumo {
namespace {

constexpr int kFiles = 2000;
constexpr int kRuns = 3;

void orFail(bool worked, const QString& error)
{
    if (!worked) {
        std::cerr << qPrintable(error) << '\n';
        std::exit(1);
    }
}

QStringList copiesOf(const QDir& source, const QTemporaryDir& folder)
{
    const QStringList names = source.entryList({"*.jpg", "*.tif", "*.dng", "*.iiq"}, QDir::Files);
    orFail(!names.isEmpty(), source.path() + QStringLiteral(": holds no images"));
    QStringList copies;
    for (int i = 0; i < kFiles; ++i) {
        const QString& name = names[i % names.size()];
        copies.append(folder.filePath(QStringLiteral("%1_%2").arg(i, 4, 10, QChar('0')).arg(name)));
        orFail(QFile::copy(source.filePath(name), copies.back()), copies.back());
    }
    return copies;
}

double fastestMs(const std::function<void()>& run)
{
    double fastest = std::numeric_limits<double>::max();
    for (int i = 0; i < kRuns; ++i) {
        const auto start = std::chrono::steady_clock::now();
        run();
        const std::chrono::duration<double, std::milli> time =
            std::chrono::steady_clock::now() - start;
        fastest = std::min(fastest, time.count());
    }
    return fastest;
}

/// What one would write without this library; returns the number of tags.
long readBare(const QStringList& files)
{
    long tags = 0;
    for (const QString& file : files) {
        const auto image = Exiv2::ImageFactory::open(QFile::encodeName(file).toStdString());
        image->readMetadata();
        tags += image->exifData().count() + image->xmpData().count();
    }
    return tags;
}

int identifyAll(const QStringList& files, int threads, const CameraModelDb& database)
{
    const ImageIdentifier identifier(database);
    int found = 0;
    exif::readExifFiles(files, threads, [&](const exif::FileMetadata& file) {
        found += identifier.identify(file.exif).camera.params.pixelSize > 0 ? 1 : 0;
        return true;
    });
    return found;
}

void runExiftool(const QTemporaryDir& folder)
{
    QProcess exiftool;
    exiftool.setStandardOutputFile(QProcess::nullDevice());
    exiftool.start(QStringLiteral("exiftool"), {"-q", "-json", "-n", "-ext", "*", folder.path()});
    orFail(exiftool.waitForFinished(-1), exiftool.errorString());
}

int measure(const QString& source)
{
    const QTemporaryDir folder;
    const QStringList files = copiesOf(QDir(source), folder);
    cameradb::CameraDBData shipped;
    QString error;
    orFail(cameradb::loadTextDB(cameradb::shippedTextDBPath(), shipped, error), error);
    CameraModelDb database;
    database.setInternalData(shipped);

    long tags = 0;
    int found = 0;
    const double bare = fastestMs([&] { tags = readBare(files); });
    const auto show = [bare](const char* what, double ms) {
        std::cout << std::left << std::setw(34) << what << std::right << std::fixed
                  << std::setprecision(0) << std::setw(8) << ms << " ms" << std::setprecision(2)
                  << std::setw(8) << ms / bare << '\n';
    };
    std::cout << files.size() << " files of " << qPrintable(source) << '\n';
    show("exiv2, bare loop", bare);
    for (const int threads : {1, 2}) {
        const double ms = fastestMs([&] { found = identifyAll(files, threads, database); });
        show(threads == 1 ? "identified, 1 thread" : "identified, 2 threads", ms);
    }
    if (!QStandardPaths::findExecutable(QStringLiteral("exiftool")).isEmpty()) {
        show("exiftool -json", fastestMs([&] { runExiftool(folder); }));
    }
    std::cout << tags << " tags read bare; " << found << " pixel sizes found\n";
    return 0;
}

} // namespace
} // namespace lumo

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return lumo::measure(
        arguments.size() > 1 ? arguments[1] : QStringLiteral(LUMO_SOURCE_DIR "/samples/images"));
}
