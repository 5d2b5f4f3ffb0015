// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/application_state_service.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/log_processing.h"
#include "lumo/foundation/log.h"
#include "receiver_thread.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <thread>

namespace lumo {
namespace {

using State = ApplicationStateService::State;
using Steps = std::pair<ProcessingStep, ProcessingStep>;

constexpr auto kNone = ProcessingStep::None;
constexpr auto kMatching = ProcessingStep::KeypointMatching;
constexpr auto kExtraction = ProcessingStep::KeypointExtraction;

class FreshState : public ApplicationStateService
{
public:
    FreshState()
        : ApplicationStateService(nullptr)
    {
        connect(this, &ApplicationStateService::stateChanged, this, [this] { ++changes; });
        connect(
            this, &ApplicationStateService::processingStepChanged, this,
            [this](ProcessingStep from, ProcessingStep to) { steps.emplace_back(from, to); });
    }
    int changes = 0;
    std::vector<Steps> steps;
};

std::vector<std::string> texts(const log::Capture& logged)
{
    std::vector<std::string> result;
    for (const log::Record& record : logged.records()) {
        result.push_back(record.text.toStdString());
    }
    return result;
}

struct StateCase
{
    int number;
    const char* text;
    bool logged;
    bool loading;
    bool loaded;
    int running; ///< number of the step, 4 for something else, 0 for nothing
};

TEST(ApplicationState, EveryStateHasItsTextLogLineAndPredicates)
{
    const StateCase cases[] = {
        {1, "ProjectLoading", true, true, false, 0}, {2, "ProjectLoaded", true, false, true, 0},
        {3, "Step1Running", true, false, true, 1},   {4, "Step1Done", true, false, true, 0},
        {5, "Step2Running", true, false, true, 2},   {6, "Step2Done", true, false, true, 0},
        {7, "Step3Running", true, false, true, 3},   {8, "Step3Done", true, false, true, 0},
        {9, "OtherRunning", false, false, true, 4},  {10, "Unknown", false, false, true, 0},
        {-1, "Unknown", false, false, false, 0},     {0, "Started", true, false, false, 0},
    };
    FreshState service;
    EXPECT_EQ(service.stateString(), "Started");
    for (const StateCase& test : cases) {
        SCOPED_TRACE(test.number);
        const log::Capture logged;
        const int before = service.changes;
        service.setState(State(test.number));
        service.setState(State(test.number));
        EXPECT_EQ(service.changes, before + 1);
        EXPECT_EQ(service.stateString(), test.text);
        EXPECT_EQ(
            texts(logged),
            test.logged ? std::vector<std::string>{test.text} : std::vector<std::string>{});
        EXPECT_EQ(service.isLoadingProject(), test.loading);
        EXPECT_EQ(service.isProjectLoaded(), test.loaded);
        EXPECT_EQ(service.isProcessing(), test.running != 0);
        EXPECT_EQ(service.isProcessingStep1(), test.running == 1);
        EXPECT_EQ(service.isProcessingStep2(), test.running == 2);
        EXPECT_EQ(service.isProcessingStep3(), test.running == 3);
    }
}

TEST(ApplicationState, StepsNestAndTheCurrentOneIsTheLastStarted)
{
    FreshState service;
    const log::Capture logged;
    service.startProcessingStep(kExtraction);
    service.startProcessingStep(kMatching);
    EXPECT_TRUE(service.stopProcessingStep());
    EXPECT_EQ(service.processingStep(), kMatching);
    EXPECT_TRUE(service.stopProcessingStep());
    EXPECT_EQ(service.processingStep(), kMatching);
    EXPECT_EQ(
        texts(logged), (std::vector<std::string>{
                           "Substep keypoint extraction started.",
                           "Substep keypoint matching started.",
                           "Substep keypoint matching finished.",
                           "Substep keypoint extraction finished.",
                       }));
    EXPECT_EQ(service.steps, (std::vector<Steps>{{kNone, kExtraction}, {kExtraction, kMatching}}));
}

TEST(ApplicationState, StartingTheCurrentStepAgainDoesNothing)
{
    FreshState service;
    service.startProcessingStep(kMatching);
    service.startProcessingStep(kMatching);
    EXPECT_EQ(service.steps.size(), 1u);
    const log::Capture logged;
    EXPECT_TRUE(service.stopProcessingStep());
    EXPECT_FALSE(service.stopProcessingStep());
    EXPECT_EQ(
        texts(logged), (std::vector<std::string>{
                           "Substep keypoint matching finished.",
                           "Call substep finish but stack is empty",
                       }));
    EXPECT_EQ(logged.records().back().level, log::Level::Warning);
}

TEST(ApplicationState, NegativeStepsBecomeCurrentAndAreNotNested)
{
    FreshState service;
    const log::Capture logged;
    service.startProcessingStep(kNone);
    EXPECT_TRUE(service.steps.empty());
    service.startProcessingStep(ProcessingStep(-5));
    EXPECT_EQ(service.steps, (std::vector<Steps>{{kNone, ProcessingStep(-5)}}));
    EXPECT_TRUE(logged.records().empty());
    EXPECT_FALSE(service.stopProcessingStep());
}

TEST(ApplicationState, CleaningAlwaysSignalsAndForgetsTheNestedSteps)
{
    FreshState service;
    service.cleanSteps();
    service.startProcessingStep(kMatching);
    service.cleanSteps();
    EXPECT_EQ(
        service.steps,
        (std::vector<Steps>{{kNone, kNone}, {kNone, kMatching}, {kMatching, kNone}}));
    EXPECT_EQ(service.processingStep(), kNone);
    EXPECT_FALSE(service.stopProcessingStep());
}

TEST(ApplicationState, PopUpsNeedAUserInterfaceThatStays)
{
    FreshState service;
    for (const bool cmdMode : {false, true}) {
        for (const bool closeGui : {false, true}) {
            service.setCmdMode(cmdMode);
            service.setCloseGui(closeGui);
            EXPECT_EQ(service.cmdMode(), cmdMode);
            EXPECT_EQ(service.closeGui(), closeGui);
            EXPECT_EQ(service.displayPopUp(), !cmdMode && !closeGui);
        }
    }
}

struct FailureCase
{
    const char* arg1;
    const char* arg2;
    QStringList args;
};

TEST(ApplicationState, FailureArgumentsKeepTheirPositions)
{
    const FailureCase cases[] = {
        {"a", "b", {"a", "b"}}, {"", "x", {"", "x"}}, {"a", "", {"a"}}, {"", "", {}}};
    FreshState service;
    service.startProcessingStep(kMatching);
    for (const FailureCase& test : cases) {
        service.setProcFailure(ProcFailCode::InitOpenImage, test.arg1, test.arg2);
        EXPECT_TRUE(service.procFailed());
        EXPECT_EQ(service.procFailCode(), ProcFailCode::InitOpenImage);
        EXPECT_EQ(service.procFailStep(), kMatching);
        EXPECT_EQ(service.procFailArgs(), test.args);
        EXPECT_EQ(service.procFailArg(0), test.arg1);
        EXPECT_EQ(service.procFailArg(1), test.arg2);
        EXPECT_EQ(service.procFailArg(-1), "");
        EXPECT_EQ(service.procFailArg(5), "");
    }
    service.setProcFailure(ProcFailCode::Unknown, "a", "b");
    service.clearProcFailure();
    EXPECT_FALSE(service.procFailed());
    EXPECT_EQ(service.procFailStep(), kNone);
    EXPECT_TRUE(service.procFailArgs().isEmpty());
}

TEST(ProcFailCode, NamesAreDistinctAndNumbersWithoutOneAreUnknown)
{
    std::set<QString> names;
    for (int number = -1; number <= 21; ++number) {
        const bool named = number >= 0 && number <= 20 && number != 2;
        const QString name = text::toString(ProcFailCode(number));
        EXPECT_EQ(name.startsWith(QStringLiteral("FAIL_")), named) << number;
        EXPECT_EQ(name == QStringLiteral("unknown"), !named) << number;
        EXPECT_TRUE(!named || names.insert(name).second) << qPrintable(name);
    }
    EXPECT_EQ(text::toString(ProcFailCode(0)), "FAIL_NONE");
    EXPECT_EQ(text::toString(ProcFailCode(13)), "FAIL_INIT_ALT_NOT_ENOUGH_GEOTAGS");
    EXPECT_EQ(text::toString(ProcFailCode(20)), "FAIL_INIT_CALC_GSD");
}

TEST(ApplicationState, QueuedSignalsReachAnotherThreadInOrder)
{
    FreshState service;
    ReceiverThread<Steps> thread;
    QObject::connect(
        &service, &ApplicationStateService::processingStepChanged, thread.receiver(),
        [&thread](ProcessingStep from, ProcessingStep to) {
            thread.receive({from, to});
        },
        Qt::QueuedConnection);
    QObject::connect(
        &service, &ApplicationStateService::stateChanged, thread.receiver(),
        [&] {
            thread.receive({kNone, ProcessingStep(1000)});
        },
        Qt::QueuedConnection);
    std::vector<Steps> expected;
    for (int i = 0; i < 500; ++i) {
        service.startProcessingStep(ProcessingStep(i));
        expected.emplace_back(ProcessingStep(i - 1), ProcessingStep(i));
        service.setState(i % 2 == 0 ? State::Step1Running : State::Step1Done);
        expected.emplace_back(kNone, ProcessingStep(1000));
    }
    EXPECT_EQ(thread.finish(), expected);
    EXPECT_TRUE(thread.onItsThread());
}

TEST(ApplicationState, StateStepAndFlagsAreReadWholeWhileAnotherThreadWrites)
{
    FreshState service;
    std::atomic<bool> done = false;
    std::atomic<int> wrong = 0;
    const auto read = [&] {
        while (!done) {
            const State state = service.state();
            const ProcessingStep step = service.processingStep();
            const bool known = state == State::Started || state == State::Step2Running ||
                               state == State::OtherRunning;
            const bool knownStep = step == kNone || step == kMatching || step == kExtraction;
            wrong += known && knownStep ? 0 : 1;
            (void)service.isProcessing();
            (void)service.stateString();
            (void)service.displayPopUp();
        }
    };
    std::thread readers[] = {std::thread(read), std::thread(read)};
    for (int i = 0; i < 2000; ++i) {
        service.setState(i % 2 == 0 ? State::Step2Running : State::OtherRunning);
        service.startProcessingStep(i % 2 == 0 ? kMatching : kExtraction);
        (void)service.stopProcessingStep();
        service.setCloseGui(i % 2 == 0);
    }
    done = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    EXPECT_EQ(wrong, 0);
}

TEST(LogProcessing, GuardsNestInTheProcessWideService)
{
    const log::Capture logged;
    {
        const LogProcessing outer(kExtraction);
        const LogProcessing inner(kMatching);
        EXPECT_EQ(serviceApplicationState().processingStep(), kMatching);
    }
    EXPECT_EQ(
        texts(logged), (std::vector<std::string>{
                           "Substep keypoint extraction started.",
                           "Substep keypoint matching started.",
                           "Substep keypoint matching finished.",
                           "Substep keypoint extraction finished.",
                       }));
}

} // namespace
} // namespace lumo
