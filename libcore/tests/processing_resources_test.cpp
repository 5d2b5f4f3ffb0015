// SPDX-License-Identifier: Apache-2.0
#include "fake_driver.h"
#include "lumo/core/common/cuda.h"
#include "lumo/core/common/processing_resources.h"
#include "lumo/foundation/log.h"
#include "lumo/foundation/system.h"
#include "lumo/lumocuda/gxc.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>

namespace lumo {

/// Makes resources of the driver that is there now.
struct ProcessingResourcesMaker
{
    static std::unique_ptr<ProcessingResources> make()
    {
        return std::unique_ptr<ProcessingResources>(new ProcessingResources);
    }
};

namespace {

constexpr std::size_t kAll = ~std::size_t{0};

/// Runs `call` and gives what the exception of that type says.
template <typename Exception>
std::string message(const std::function<void()>& call)
{
    try {
        call();
    } catch (const Exception& exception) {
        return exception.what();
    }
    return "nothing was thrown";
}

TEST(ProcessingResources, LimitsStartAtWhatTheProcessIsGrantedAndAreAtLeastOne)
{
    const FakeDriver driver({});
    const auto resources = ProcessingResourcesMaker::make();
    EXPECT_EQ(resources->maxCPUs(), system::noLogicalCPUs());
    EXPECT_EQ(resources->maxRamGB(), system::installedRAMGB());
    resources->setMaxCPUs(3);
    resources->setMaxRAMGB(5);
    for (const int bad : {0, -1}) {
        EXPECT_EQ(
            message<std::invalid_argument>([&] { resources->setMaxCPUs(bad); }),
            "Cannot setMaxCPUs() smaller than 1");
        EXPECT_EQ(
            message<std::invalid_argument>([&] { resources->setMaxRAMGB(bad); }),
            "Cannot setMaxRAMGB() smaller than 1");
    }
    EXPECT_THROW(resources->setMaxRAMGB(2097152), std::invalid_argument);
    EXPECT_EQ(resources->maxCPUs(), 3);
    EXPECT_EQ(resources->maxRamMB(), 5 * 1024);
}

TEST(ProcessingResources, WithoutAGpuAllFlagsAreSetAndNoIndexIsValid)
{
    const FakeDriver driver({});
    const auto resources = ProcessingResourcesMaker::make();
    EXPECT_EQ(resources->gpuCount(), 0u);
    EXPECT_FALSE(resources->hasAnyGpuEnabled());
    EXPECT_EQ(resources->gpuFlags(), kAll);
    EXPECT_EQ(
        message<std::out_of_range>([&] { static_cast<void>(resources->gpuEnabled(0)); }),
        "gpuEnabled() called with invalid GPU index");
    for (const bool on : {false, true}) {
        EXPECT_EQ(
            message<std::invalid_argument>([&] { resources->setGpuEnabled(0, on); }),
            "Cannot turn on GPU with invalid index");
    }
    EXPECT_FALSE(cuda::gpusAvailableForProcessing());
    EXPECT_EQ(cuda::unavailableReason(), "the CUDA driver finds no device");
    EXPECT_EQ(cuda::device2string(0), "");
}

TEST(ProcessingResources, GpusWithTooLittleMemoryStartDisabledAndFlagsArePassedOn)
{
    const FakeDriver driver(
        {{"Small", 2000 * kMB - 1}, {"Just enough", 2000 * kMB}, {"Large", 143771 * kMB}});
    const auto resources = ProcessingResourcesMaker::make();
    ASSERT_EQ(resources->gpuCount(), 3u);
    EXPECT_EQ(resources->gpuName(1), "Just enough");
    EXPECT_THROW(static_cast<void>(resources->gpuName(3)), std::out_of_range);
    const auto expectFlags = [&resources](std::size_t flags, bool any) {
        EXPECT_EQ(resources->gpuFlags(), flags);
        EXPECT_EQ(gxcGetGPUFlags(), flags);
        EXPECT_EQ(resources->hasAnyGpuEnabled(), any);
    };
    expectFlags(kAll - 1, true);
    resources->setGpuEnabled(0, true);
    resources->setGpuEnabled(2, false);
    expectFlags(kAll - 4, true);
    resources->setGpuEnabled(0, false);
    resources->setGpuEnabled(1, false);
    EXPECT_FALSE(resources->gpuEnabled(1));
    expectFlags(kAll - 7, false);
    resources->enableAllGpus();
    expectFlags(kAll, true);
    resources->disableAllGpus();
    expectFlags(0, false);
}

TEST(ProcessingResources, OnlyTheFirst64GpusCanBeEnabled)
{
    const FakeDriver driver(std::vector<FakeDevice>(65, {"Card", 4096 * kMB}));
    const log::Capture capture;
    const auto resources = ProcessingResourcesMaker::make();
    EXPECT_EQ(resources->gpuCount(), 65u);
    EXPECT_EQ(resources->gpuName(64), "Card");
    EXPECT_EQ(resources->gpuFlags(), kAll);
    EXPECT_TRUE(resources->gpuEnabled(63));
    EXPECT_FALSE(resources->gpuEnabled(64));
    EXPECT_THROW(resources->setGpuEnabled(64, true), std::invalid_argument);
    resources->setGpuEnabled(64, false);
    resources->setGpuEnabled(63, false);
    EXPECT_EQ(gxcGetGPUFlags(), kAll >> 1U);
    resources->disableAllGpus();
    EXPECT_FALSE(resources->hasAnyGpuEnabled());
    EXPECT_TRUE(capture.contains(
        log::Level::Warning, QStringLiteral("Of 65 GPUs only the first 64 can be used")));
}

TEST(Cuda, DevicesAsText)
{
    FakeDriver driver(
        {{"First Card", 2000 * kMB, 1410999, 1}, {"Second", 1048576 * kMB + kMB / 2, 900000, 0}});
    EXPECT_EQ(
        cuda::device2string(0), "Device name: First Card | GPU clock: 1410 MHz "
                                "| Memory: 2000 MBytes | Run time limit on kernels: Yes");
    EXPECT_EQ(
        cuda::device2string(1), "Device name: Second | GPU clock: 900 MHz "
                                "| Memory: 1048576.5 MBytes | Run time limit on kernels: No");
    std::string text = "as it was";
    cuda::getActiveDeviceString(text);
    EXPECT_EQ(text, "as it was");
    driver.setActiveDevice(0);
    cuda::getActiveDeviceString(text);
    EXPECT_EQ(text, "GPU 0 First Card");
}

} // namespace
} // namespace lumo
