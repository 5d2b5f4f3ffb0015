// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"
#include "lumo/core/services/proc_fail_code.h"
#include "lumo/core/services/service.h"
#include "lumo/pipeline/processing_step.h"

#include <QObject>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <deque>

namespace lumo {

/// What the application is doing: its coarse state, the current processing step
/// with the steps it is nested in, how it was started, and the last failure.
///
/// State, step and the two flags may be read and written from any thread. Steps
/// are started and stopped (also cleanSteps) by one thread at a time, and the
/// failure is written and read by one thread at a time.
///
/// The signals are emitted by the function that makes the change, on the thread
/// that calls it and before it returns. A receiver that lives on another thread
/// must be connected with a queued connection (which the automatic connection
/// to a QObject is); it then gets the changes of one thread in their order.
/// Where two threads write at once, the order of their signals is open:
/// a receiver of stateChanged() asks for the state.
class LUMO_CORE_EXPORT ApplicationStateService : public QObject, public Service
{
    Q_OBJECT

public:
    /// The coarse state. Processing a project has three steps.
    enum class State : std::int32_t {
        Started = 0,
        ProjectLoading = 1,
        ProjectLoaded = 2,
        Step1Running = 3,
        Step1Done = 4,
        Step2Running = 5,
        Step2Done = 6,
        Step3Running = 7,
        Step3Done = 8,
        OtherRunning = 9,
    };
    Q_ENUM(State)

    ~ApplicationStateService() override;

    // State

    /// Takes the state and, if it was another one, emits stateChanged() and logs
    /// the new state, unless it is OtherRunning or none of the enumeration.
    void setState(State state);
    [[nodiscard]] State state() const { return m_state; }
    /// The name in the enumeration; "Unknown" for a number that is none of it.
    [[nodiscard]] QString stateString() const;
    [[nodiscard]] bool isLoadingProject() const;
    /// Also while the project is being processed.
    [[nodiscard]] bool isProjectLoaded() const;
    /// One of the three steps, or something else, is running.
    [[nodiscard]] bool isProcessing() const;
    [[nodiscard]] bool isProcessingStep1() const;
    [[nodiscard]] bool isProcessingStep2() const;
    [[nodiscard]] bool isProcessingStep3() const;

    // Processing steps

    /// Makes `step` the current one, emits processingStepChanged() and, unless
    /// it is negative (no step), logs that it started and nests it in those
    /// that run. Does nothing if it is the current step already.
    void startProcessingStep(ProcessingStep step);
    /// Logs that the innermost of the running steps is finished, and takes it out.
    /// The current step stays, without a signal: it is the last one that began,
    /// so that a failure found afterwards can be put down to it.
    /// \returns false, with a warning in the log, if no step runs
    bool stopProcessingStep();
    [[nodiscard]] ProcessingStep processingStep() const { return m_step; }
    /// No step is current or runs any more. Always emits processingStepChanged().
    void cleanSteps();

    // How the application runs

    void setCmdMode(bool cmdMode) { m_cmdMode = cmdMode; }
    /// It was started from the command line, without a user interface.
    [[nodiscard]] bool cmdMode() const { return m_cmdMode; }
    void setCloseGui(bool closeGui) { m_closeGui = closeGui; }
    /// Its user interface is about to close.
    [[nodiscard]] bool closeGui() const { return m_closeGui; }
    /// Somebody is there to read a message box.
    [[nodiscard]] bool displayPopUp() const { return !m_cmdMode && !m_closeGui; }

    // Failure

    /// Keeps the failure, and the current step as the one it happened in.
    /// \param arg1, arg2  what the failure is about, such as a file name. Empty
    ///     ones at the end are not kept; arg2 is argument 1 whatever arg1 is
    void setProcFailure(ProcFailCode code, const QString& arg1, const QString& arg2);
    void clearProcFailure();
    [[nodiscard]] bool procFailed() const { return m_failCode != ProcFailCode::None; }
    [[nodiscard]] ProcFailCode procFailCode() const { return m_failCode; }
    [[nodiscard]] ProcessingStep procFailStep() const { return m_failStep; }
    [[nodiscard]] const QStringList& procFailArgs() const { return m_failArgs; }
    /// Argument i, counted from 0; empty if there is none.
    [[nodiscard]] QString procFailArg(int i) const;

Q_SIGNALS:
    /// After the state has become another one.
    void stateChanged();
    /// After a step was made the current one, and by every cleanSteps(). Does not
    /// fire when a step stops.
    void processingStepChanged(lumo::ProcessingStep oldStep, lumo::ProcessingStep newStep);

protected:
    /// For CoreServices, and for tests, which derive.
    explicit ApplicationStateService(QObject* parent);

private:
    friend class CoreServices;

    std::atomic<State> m_state = State::Started;
    std::atomic<bool> m_cmdMode = false;
    std::atomic<bool> m_closeGui = false;
    std::atomic<ProcessingStep> m_step = ProcessingStep::None;
    std::deque<ProcessingStep> m_runningSteps; ///< outermost first
    ProcFailCode m_failCode = ProcFailCode::None;
    ProcessingStep m_failStep = ProcessingStep::None;
    QStringList m_failArgs;
};

} // namespace lumo
