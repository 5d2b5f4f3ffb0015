// SPDX-License-Identifier: Apache-2.0
#include "login_manager.h"
#include "lumo/foundation/log.h"
#include "lumo/power/power_save.h"

#include <gtest/gtest.h>

#include <thread>

namespace lumo::system {

TEST(PowerSave, IsHeldBackByOneLockUntilItIsEnabled)
{
    const LoginManager manager;
    for (std::size_t round = 1; round <= 2; ++round) {
        disablePowerSave();
        disablePowerSave();
        ASSERT_EQ(manager.requests().size(), round);
        EXPECT_TRUE(manager.held());
        std::thread(enablePowerSave).join();
        EXPECT_TRUE(manager.released());
        enablePowerSave();
    }
    const QStringList request = manager.requests().front();
    ASSERT_EQ(request.size(), 4);
    EXPECT_EQ(request[0], "sleep:idle");
    EXPECT_EQ(request[1], "lumo");
    EXPECT_EQ(request[3], "block");
}

TEST(PowerSave, IsNoLongerHeldBackByAProcessThatWasKilled)
{
    const LoginManager manager;
    QProcess holder;
    holder.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    holder.start(QStringLiteral(POWER_HOLDER), QStringList());
    ASSERT_TRUE(holder.waitForReadyRead(30000));
    ASSERT_EQ(manager.requests().size(), 1u);
    EXPECT_TRUE(manager.held());
    holder.kill();
    ASSERT_TRUE(holder.waitForFinished());
    EXPECT_TRUE(manager.released());
}

TEST(PowerSave, ARefusalIsSaidOnceAndTheWorkGoesOn)
{
    LoginManager manager;
    manager.refuse(true);
    const log::Capture capture;
    for (int i = 0; i < 2; ++i) {
        disablePowerSave();
        enablePowerSave();
    }
    EXPECT_EQ(manager.requests().size(), 2u);
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_TRUE(capture.contains(
        log::Level::Warning, "The system may go to sleep during processing: "
                             "the login manager refuses: not today"));
    manager.refuse(false);
    disablePowerSave();
    EXPECT_TRUE(manager.held());
    enablePowerSave();
}

TEST(PowerSave, WithoutABusOneWarningSaysSo)
{
    {
        const LoginManager manager; // makes a bus that is then gone
        disablePowerSave();
        enablePowerSave();
    }
    const log::Capture capture;
    disablePowerSave();
    disablePowerSave();
    enablePowerSave();
    ASSERT_EQ(capture.records().size(), 1u);
    EXPECT_TRUE(capture.records().front().text.startsWith(
        "The system may go to sleep during processing: no system bus: "));
}

} // namespace lumo::system
