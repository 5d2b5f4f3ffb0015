// SPDX-License-Identifier: Apache-2.0
#include "fake_driver.h"
#include "program.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

/// While it lives, programs look for the GPU driver in this folder first.
class DriverFolder
{
public:
    explicit DriverFolder(const QString& folder)
        : m_before(qgetenv("LD_LIBRARY_PATH"))
    {
        qputenv("LD_LIBRARY_PATH", folder.toLocal8Bit() + ':' + m_before);
    }
    DriverFolder(const DriverFolder&) = delete;
    DriverFolder& operator=(const DriverFolder&) = delete;
    ~DriverFolder() { qputenv("LD_LIBRARY_PATH", m_before); }

private:
    QByteArray m_before;
};

TEST(Resources, GpusAreShownWithWhatEnabledOrDisabledThem)
{
    FakeDriver driver(
        {{"Small", 2000 * kMB - 1, 1410999, 1},
         {"Large", 143771 * kMB, 1980000, 0},
         {"Other", 4096 * kMB},
         {"Broken", 4096 * kMB}});
    driver.refuse("cuDeviceGet", 46, 3);
    const DriverFolder folder(QString::fromStdString(FakeDriver::folder()));
    const ProgramRun run = runProgram(
        {"resources", "--json", "--max-cpus", "3", "--max-ram-gb", "5", "--disable-gpu", "2"});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains("GPU 3 cannot be used")) << run.err.toStdString();
    ASSERT_EQ(run.records().size(), 1u);
    const QJsonObject record = run.records().front();
    EXPECT_EQ(record["maxCPUs"].toInt(), 3);
    EXPECT_EQ(record["maxCPUsFrom"].toString(), "user");
    EXPECT_EQ(record["maxRamGB"].toInt(), 5);
    EXPECT_EQ(record["maxRamFrom"].toString(), "user");
    EXPECT_EQ(record["gpuFlags"].toString(), "fffffffffffffff2");
    const QJsonArray gpus = record["gpus"].toArray();
    ASSERT_EQ(gpus.size(), 4);
    EXPECT_EQ(
        gpus[1].toObject(), (QJsonObject{
                                {"index", 1},
                                {"name", "Large"},
                                {"memoryMB", 143771},
                                {"clockMHz", 1980},
                                {"kernelTimeLimit", false},
                                {"enabled", true},
                                {"enabledFrom", "driver"}}));
    EXPECT_TRUE(gpus[0].toObject()["kernelTimeLimit"].toBool());
    const std::tuple<int, const char*, const char*> disabled[] = {
        {0, "driver", "less than 2000 MB"},
        {2, "user", "--disable-gpu"},
        {3, "driver", "the driver does not report its memory"}};
    for (const auto& [gpu, from, reason] : disabled) {
        const QJsonObject shown = gpus[gpu].toObject();
        EXPECT_FALSE(shown["enabled"].toBool()) << gpu;
        EXPECT_EQ(shown["enabledFrom"].toString(), from) << gpu;
        EXPECT_EQ(shown["reason"].toString(), reason) << gpu;
    }
}

TEST(Resources, WithoutAGpuTheReasonIsShown)
{
    const QTemporaryDir broken; // where the driver should be is no library
    QFile library(broken.filePath("libcuda.so.1"));
    ASSERT_TRUE(library.open(QIODevice::WriteOnly));
    library.write("not a library");
    library.close();
    const DriverFolder folder(broken.path());
    const QJsonObject record = runProgram({"resources", "--json"}).records().at(0);
    const QString reason = record["noGpuReason"].toString();
    EXPECT_TRUE(reason.startsWith("the CUDA driver library cannot be opened: "))
        << reason.toStdString();
    EXPECT_EQ(record["maxCPUs"], record["grantedCPUs"]);
    EXPECT_EQ(record["maxCPUsFrom"], record["grantedCPUsFrom"]);
    const ProgramRun run = runProgram({"resources"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.out.contains("\nNo GPU: " + reason.toUtf8() + '\n')) << run.out.toStdString();
}

TEST(Resources, LimitsThatCannotBeAreWrongUsage)
{
    const FakeDriver driver({{"Card", 4096 * kMB}});
    const DriverFolder folder(QString::fromStdString(FakeDriver::folder()));
    for (const QStringList& options :
         {QStringList{"--max-cpus", "0"}, QStringList{"--max-ram-gb", "2097152"},
          QStringList{"--disable-gpu", "1"}, QStringList{"--disable-gpu", "-1"}}) {
        const ProgramRun run = runProgram(QStringList("resources") + options);
        EXPECT_EQ(run.exitCode, 2) << qPrintable(options.join(' '));
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.contains(options.front().toUtf8())) << run.err.toStdString();
    }
}

TEST(Resources, OnlyThisCommandOpensTheDriver)
{
    const QTemporaryDir data;
    const QString trace = data.filePath("trace");
    const FakeDriver driver({{"Card", 4096 * kMB}});
    const DriverFolder folder(QString::fromStdString(FakeDriver::folder()));
    qputenv("FAKE_CUDA_TRACE", trace.toLocal8Bit());
    const QStringList common{"--data-dir", data.path()};
    EXPECT_EQ(runProgram(common + QStringList{"camdb", "list"}).exitCode, 0);
    EXPECT_EQ(runProgram(common + QStringList{"identify", samplePath("images")}).exitCode, 0);
    EXPECT_FALSE(QFile::exists(trace));
    EXPECT_EQ(runProgram({"resources"}).exitCode, 0);
    EXPECT_TRUE(QFile::exists(trace));
    qunsetenv("FAKE_CUDA_TRACE");
}

} // namespace
