// SPDX-License-Identifier: Apache-2.0
#include "login_manager.h"
#include "lumo/core/common/scoped_disable_power_save.h"
#include "lumo/foundation/log.h"

#include <gmock/gmock.h>

#include <memory>
#include <thread>

namespace lumo {
namespace {

std::vector<std::pair<log::Level, QString>> said(const log::Capture& capture)
{
    std::vector<std::pair<log::Level, QString>> result;
    for (const log::Record& record : capture.records()) {
        result.emplace_back(record.level, record.text);
    }
    return result;
}

TEST(ScopedDisablePowerSave, NestedGuardsHoldOneLockUntilTheLastGoes)
{
    const LoginManager manager;
    const log::Capture capture;
    auto outer = std::make_unique<ScopedDisablePowerSave>();
    auto copy = std::make_unique<ScopedDisablePowerSave>(*outer);
    {
        const ScopedDisablePowerSave inner;
    }
    outer.reset();
    EXPECT_EQ(manager.requests().size(), 1u);
    EXPECT_TRUE(manager.held());
    std::thread([&copy] { copy.reset(); }).join();
    EXPECT_TRUE(manager.released());
    EXPECT_THAT(
        said(capture), testing::ElementsAre(
                           std::pair(log::Level::Info, "OS Power Save: Disable"),
                           std::pair(log::Level::Warning, "OS Power Save: Enable")));
}

} // namespace
} // namespace lumo
