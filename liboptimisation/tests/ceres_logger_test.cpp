// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/optimisation/ceres_logger.h"

#include <glog/logging.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace lumo {
namespace {

TEST(CeresLogger, MessagesArriveOnceWithLevelAndOriginAndNowhereElse)
{
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back(optimization::initCeresLumoLogger);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    const log::Capture logged;
    testing::internal::CaptureStderr();
    LOG(INFO) << "iteration " << 3;
    LOG(WARNING) << "no convergence";
    const int line = __LINE__ + 1;
    LOG(ERROR) << "not finite: ü";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");

    const std::vector<log::Record> records = logged.records();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].text, "iteration 3");
    EXPECT_EQ(records[0].level, log::Level::Info);
    EXPECT_EQ(records[1].level, log::Level::Warning);
    EXPECT_EQ(records[2].level, log::Level::Important);
    EXPECT_EQ(records[2].text, QStringLiteral("not finite: ü"));
    EXPECT_EQ(records[2].source, "ceres_logger_test");
    EXPECT_EQ(records[2].line, line);
}

} // namespace
} // namespace lumo
