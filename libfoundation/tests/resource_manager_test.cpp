// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/foundation/resource_manager.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace lumo {

namespace {

/// Counts what it is asked to do. Without a lock of its own: a thread
/// sanitizer sees it if two operations run at a time.
class SwitchManager : public ResourceManager
{
public:
    unsigned state = 0;
    int switchedOn = 0;
    int switchedOff = 0;
    bool refuse = false;

private:
    [[nodiscard]] unsigned readState() const override { return state; }
    void writeState(unsigned holders) override { state = holders; }

    void onFirstAcquired() override
    {
        if (refuse) {
            throw std::runtime_error("refused on");
        }
        ++switchedOn;
    }

    void onLastReleased() override
    {
        if (refuse) {
            throw std::runtime_error("refused off");
        }
        ++switchedOff;
    }
};

} // namespace

TEST(RecursiveResource, SwitchesForTheFirstHolderAndAfterTheLast)
{
    SwitchManager manager;
    for (int round = 1; round <= 2; ++round) {
        {
            const RecursiveResource outer(manager);
            {
                const RecursiveResource inner(manager);
                const RecursiveResource copy(inner);
                EXPECT_EQ(manager.state, 3U);
            }
            EXPECT_EQ(manager.state, 1U);
            EXPECT_EQ(manager.switchedOn, round);
            EXPECT_EQ(manager.switchedOff, round - 1);
        }
        EXPECT_EQ(manager.state, 0U);
        EXPECT_EQ(manager.switchedOff, round);
    }
}

TEST(RecursiveResource, FailureToSwitchOnLeavesNoHolder)
{
    SwitchManager manager;
    manager.refuse = true;
    EXPECT_THROW(const RecursiveResource held(manager), std::runtime_error);
    EXPECT_EQ(manager.state, 0U);

    manager.refuse = false;
    const RecursiveResource held(manager);
    EXPECT_EQ(manager.state, 1U);
    EXPECT_EQ(manager.switchedOn, 1);
}

TEST(RecursiveResource, FailureToSwitchOffIsLoggedAndLeavesNoHolder)
{
    const log::Capture capture;
    SwitchManager manager;
    {
        const RecursiveResource held(manager);
        manager.refuse = true;
    }
    EXPECT_EQ(manager.state, 0U);
    EXPECT_TRUE(capture.contains(
        log::Level::Warning, QStringLiteral("Unable to release a resource: refused off")));
}

TEST(ResourceManager, RefusesAReleaseTooMany)
{
    SwitchManager manager;
    EXPECT_THROW(manager.release(), std::logic_error);
    EXPECT_EQ(manager.state, 0U);
    EXPECT_EQ(manager.switchedOff, 0);
}

TEST(RecursiveResource, CountHoldsWithManyThreads)
{
    SwitchManager manager;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&manager] {
            for (int round = 0; round < 2000; ++round) {
                const RecursiveResource outer(manager);
                const RecursiveResource inner(outer);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(manager.state, 0U);
    EXPECT_GE(manager.switchedOn, 1);
    EXPECT_EQ(manager.switchedOn, manager.switchedOff);
}

} // namespace lumo
