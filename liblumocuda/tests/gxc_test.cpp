// SPDX-License-Identifier: Apache-2.0
#include "fake_driver.h"
#include "lumo/lumocuda/gxc.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>

#include <array>
#include <functional>

namespace {

using testing::ElementsAre;

std::string name(int device)
{
    std::array<char, 64> buffer{};
    static_cast<void>(gxcGetDeviceName(device, buffer.data(), buffer.size()));
    return buffer.data();
}

std::string statusText()
{
    std::array<char, 256> buffer{};
    gxcGetCudaStatusText(buffer.data(), buffer.size());
    return buffer.data();
}

/// All that is told about one device.
using Facts = std::tuple<std::string, int, float, int>;
Facts facts(int device)
{
    return {
        name(device), gxcGetClockRate(device), gxcGetGlobalMemory(device),
        gxcRunTimeLimitOnKernels(device)};
}

std::vector<std::string>& said()
{
    static std::vector<std::string> messages;
    return messages;
}

void keepMessage(gxcLogLevel level, const char* message)
{
    gxcGetCudaStatus(); // a logger may ask
    said().push_back((level == GxcLogWarning ? "warning: " : "info: ") + std::string(message));
}

struct NoGpuCase
{
    const char* what;
    std::function<void(FakeDriver&)> arrange;
    int status;
    std::string text; ///< with which the reason begins
};

class NoGpu : public testing::TestWithParam<NoGpuCase>
{};

} // namespace

TEST_P(NoGpu, IsNoDeviceAndAReason)
{
    FakeDriver driver({});
    GetParam().arrange(driver);
    EXPECT_EQ(gxcGetDeviceCount(), 0);
    EXPECT_EQ(gxcGetCudaStatus(), GetParam().status);
    EXPECT_THAT(statusText(), testing::StartsWith(GetParam().text));
    EXPECT_EQ(facts(0), Facts("", 0, 0.0F, -1));
    EXPECT_EQ(gxcGetActiveDevice(), -1);
    gxcCudaResetAllDevices();
    EXPECT_EQ(gxcGetGPUFlags(), ~std::uint64_t{0});
}

INSTANTIATE_TEST_SUITE_P(
    Gxc, NoGpu,
    testing::Values(
        NoGpuCase{
            "NoLibrary", [](FakeDriver&) { gxcUseDriverLibrary("/nowhere/libcuda.so.1"); },
            GxcStatusNoLibrary,
            "the CUDA driver library cannot be opened: /nowhere/libcuda.so.1: "},
        NoGpuCase{
            "MissingFunction",
            [](FakeDriver&) { gxcUseDriverLibrary(FakeDriver::incompleteLibrary().c_str()); },
            GxcStatusMissingFunction,
            "the CUDA driver library has no function cuDeviceTotalMem_v2"},
        NoGpuCase{
            "OldDriver", [](FakeDriver& driver) { driver.setVersion(6050); }, GxcStatusDriverTooOld,
            "the CUDA driver is too old: it is for CUDA 6.5, 7.0 is needed"},
        NoGpuCase{
            "StartSaysNoDevice", [](FakeDriver& driver) { driver.refuse("cuInit", 100); }, 100,
            "the CUDA driver finds no device"},
        NoGpuCase{
            "StartFails", [](FakeDriver& driver) { driver.refuse("cuInit", 803); }, 803,
            "the CUDA driver does not start: made-up fault (error 803)"},
        NoGpuCase{
            "StartFailsWithoutText", [](FakeDriver& driver) { driver.refuse("cuInit", 999); }, 999,
            "the CUDA driver does not start: error 999"},
        NoGpuCase{
            "CountFails", [](FakeDriver& driver) { driver.refuse("cuDeviceGetCount", 3); }, 3,
            "the CUDA driver does not report its devices: made-up fault (error 3)"},
        NoGpuCase{"NoDevices", [](FakeDriver&) {}, 100, "the CUDA driver finds no device"}),
    [](const auto& test) { return test.param.what; });

TEST(Gxc, TellsWhatTheDriverTells)
{
    FakeDriver driver({{"First", 2000 * kMB, 1980000, 0}, {"Second", 2000 * kMB - 1, 1410999, 1}});
    EXPECT_EQ(gxcGetDeviceCount(), 2);
    EXPECT_EQ(gxcGetCudaStatus(), GxcStatusAvailable);
    EXPECT_EQ(statusText(), "");
    EXPECT_EQ(facts(0), Facts("First", 1980, 2000.0F, 0));
    EXPECT_EQ(facts(1), Facts("Second", 1410, 2000.0F - 1.0F / 1024.0F, 1));
    for (const int outside : {-1, 2}) {
        EXPECT_EQ(facts(outside), Facts("", 0, 0.0F, -1));
        char buffer = 'x';
        EXPECT_EQ(gxcGetDeviceName(outside, &buffer, 0), GxcStatusInvalidDevice);
        EXPECT_EQ(buffer, 'x');
    }
    std::array<char, 4> small{'x', 'x', 'x', 'x'};
    EXPECT_EQ(gxcGetDeviceName(0, small.data(), small.size()), 0);
    EXPECT_STREQ(small.data(), "Fir");
}

TEST(Gxc, ARefusalForOneDeviceIsSaidAndTouchesNoOther)
{
    const std::tuple<const char*, Facts, const char*> cases[] = {
        {"cuDeviceGet", Facts("unknown device", 0, 0.0F, -1), "cannot be used"},
        {"cuDeviceGetName", Facts("unknown device", 2000, 4096.0F, 0), "does not report its name"},
        {"cuDeviceTotalMem_v2", Facts("Card", 2000, 0.0F, 0), "does not report its memory"},
        {"cuDeviceGetAttribute", Facts("Card", 0, 4096.0F, -1), "does not report its clock rate"},
    };
    const FakeDevice card{"Card", 4096 * kMB, 2000000};
    for (const auto& [function, expected, message] : cases) {
        SCOPED_TRACE(function);
        FakeDriver driver({card, card, card});
        driver.refuse(function, 46, 1);
        EXPECT_EQ(gxcGetDeviceCount(), 3);
        EXPECT_EQ(gxcGetCudaStatus(), GxcStatusAvailable);
        EXPECT_EQ(facts(1), expected);
        EXPECT_EQ(facts(0), Facts("Card", 2000, 4096.0F, 0));
        EXPECT_EQ(facts(2), facts(0));
        said().clear(); // what was said before there was a logger is not lost
        gxcSetLoggerCallback(keepMessage);
        ASSERT_GE(said().size(), 2u);
        EXPECT_EQ(
            said().front(),
            std::string("warning: GPU 1 ") + message + ": made-up fault (error 46)");
        EXPECT_EQ(said().back(), "info: GPUs found: 3");
    }
}

TEST(Gxc, ActiveDeviceIsThatOfTheContextByItsIndex)
{
    FakeDriver driver({{"First", kMB}, {"Second", kMB}});
    EXPECT_EQ(gxcGetActiveDevice(), -1);
    driver.setActiveDevice(1);
    EXPECT_EQ(gxcGetActiveDevice(), 1);
    driver.setActiveDevice(7);
    EXPECT_EQ(gxcGetActiveDevice(), -1);
}

TEST(Gxc, ResetGoesOnAfterADeviceThatRefuses)
{
    const QTemporaryDir folder;
    QFile trace(folder.filePath("trace"));
    FakeDriver driver({{"First", kMB}, {"Second", kMB}, {"Third", kMB}});
    driver.refuse("cuDevicePrimaryCtxReset", 46, 1);
    driver.refuse("cuDeviceGet", 46, 0);
    gxcSetLoggerCallback(keepMessage);
    EXPECT_EQ(gxcGetDeviceCount(), 3);
    said().clear();
    qputenv("FAKE_CUDA_TRACE", trace.fileName().toLocal8Bit());
    gxcCudaResetAllDevices();
    qunsetenv("FAKE_CUDA_TRACE");
    ASSERT_TRUE(trace.open(QIODevice::ReadOnly));
    EXPECT_EQ(trace.readAll(), "reset 1\nreset 2\n");
    EXPECT_THAT(said(), ElementsAre("warning: GPU 1 cannot be reset: made-up fault (error 46)"));
}
