// SPDX-License-Identifier: Apache-2.0
#include "lumo/foundation/log.h"
#include "lumo/processing/processing_blob.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <vector>

namespace lumo {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;

/// The percents that a blob passes on to a listener.
struct Heard
{
    explicit Heard(ProcessingBlob& blob)
        : id(blob.addListener([this](const Progress& p) { percents.push_back(p.percent); }))
    {}
    std::vector<int> percents;
    ProcessingBlob::ListenerId id;
};

TEST(ProcessingBlob, StopHoldsUntilTheNextStart)
{
    ProcessingBlob blob;
    EXPECT_FALSE(blob.shouldStop());
    blob.stop();
    blob.progress(50, "working");
    EXPECT_TRUE(blob.shouldStop());
    blob.start();
    EXPECT_FALSE(blob.shouldStop());
    EXPECT_EQ(blob.progress(), Progress());
}

TEST(ProcessingBlob, PartsBecomeWholePercentsWithoutOverflow)
{
    constexpr auto kMost = std::numeric_limits<unsigned long long>::max();
    struct Case
    {
        unsigned long long current;
        unsigned long long total;
        int percent;
    };
    const Case cases[] = {
        {0, 7, 0},
        {1, 3, 33},
        {999, 1000, 99},
        {1000, 1000, 100},
        {1001, 1000, 100},
        {0, 0, 0},
        {5, 0, 0},
        {kMost / 2, kMost, 50},
        {kMost, kMost, 100},
        {kMost - 1, kMost, 99},
        {kMost / 100, kMost / 100, 100},
    };
    ProcessingBlob blob;
    for (const Case& test : cases) {
        blob.progress(test.current, test.total, {});
        EXPECT_EQ(blob.progress().percent, test.percent) << test.current << " of " << test.total;
    }
    blob.progress(-1, "below");
    EXPECT_EQ(blob.progress(), (Progress{0, "below"}));
    blob.progress(101, "above");
    EXPECT_EQ(blob.progress(), (Progress{100, "above"}));
}

TEST(ProcessingBlob, WithinAnIntervalOnlyTheFirstReportAndTheCompletionArePassedOn)
{
    const log::Capture logged;
    ProcessingBlob blob(hours(1));
    const Heard heard(blob);
    for (int run = 0; run < 2; ++run) {
        blob.start();
        for (unsigned report = 0; report <= 1000; ++report) {
            blob.progress(report, 1000, QString::number(report));
        }
        blob.progress(100, "still all");
    }
    EXPECT_EQ(heard.percents, (std::vector{0, 100, 0, 100}));
    EXPECT_EQ(logged.records().size(), 4u);
    EXPECT_EQ(blob.progress(), (Progress{100, "still all"}));
}

TEST(ProcessingBlob, WithoutAnIntervalAllThatIsNewIsPassedOnUntilTheListenerGoes)
{
    ProcessingBlob blob(milliseconds(0));
    const Heard heard(blob);
    for (const int percent : {10, 10, 20, 5}) {
        blob.progress(percent, "a");
    }
    blob.progress(5, "b");
    blob.removeListener(heard.id);
    blob.removeListener(heard.id);
    blob.progress(50, "b");
    EXPECT_EQ(heard.percents, (std::vector{10, 20, 5, 5}));
    EXPECT_THROW((void)blob.addListener({}), std::invalid_argument);
}

TEST(ProcessingBlob, AfterTheIntervalReportsArePassedOnAgain)
{
    ProcessingBlob blob(milliseconds(20));
    const Heard heard(blob);
    blob.progress(1, {});
    std::this_thread::sleep_for(milliseconds(25));
    blob.progress(2, {});
    EXPECT_EQ(heard.percents, (std::vector{1, 2}));
}

TEST(ProcessingBlob, ThreadsReportWholeProgressAndAListenerMayStopThem)
{
    ProcessingBlob blob(milliseconds(0));
    int torn = 0;
    int calls = 0;
    const auto id = blob.addListener([&](const Progress& progress) {
        torn += progress.text == QString::number(progress.percent) ? 0 : 1;
        if (++calls == 500 && !blob.shouldStop()) {
            blob.stop();
        }
    });
    std::vector<std::thread> workers;
    for (int worker = 0; worker < 4; ++worker) {
        workers.emplace_back([&blob, worker] {
            for (int i = 0; !blob.shouldStop(); ++i) {
                const int percent = (i + 25 * worker) % 100;
                blob.progress(percent, QString::number(percent));
                (void)blob.progress();
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    blob.removeListener(id);
    EXPECT_EQ(torn, 0);
    EXPECT_GE(calls, 500);
}

} // namespace
} // namespace lumo
