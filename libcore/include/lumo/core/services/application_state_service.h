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

/// The state of the application: its coarse state, the current processing step
/// with the steps it is nested in, how it was started, and the last failure.
///
/// State, step and the two flags may be read and written from any thread. Steps
/// are started and stopped (also cleanSteps) by one thread at a time, and the
/// failure is written and read by one thread at a time.
///
/// The signals are emitted by the function that makes the change, on the thread
/// that calls it and before it returns. A receiver that lives on another thread
/// must be connected with a queued connection (which the automatic connection
/// to a QObject is); the receiver then gets the changes of one thread in order.
/// If two threads write at once, the order of their signals is not defined:
/// a receiver of stateChanged() should read state().
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

    /// Sets the state. If the state changes, emits stateChanged(), and logs the new
    /// state unless it is OtherRunning or not a value of the enumeration.
    void setState(State state);
    [[nodiscard]] State state() const { return m_state; }
    /// The state's name in the enumeration; "Unknown" for any other number.
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

    /// Makes `step` the current step and emits processingStepChanged(). Unless `step`
    /// is negative (no step), also logs its start and adds it as the innermost
    /// running step. Does nothing if `step` is the current step already.
    void startProcessingStep(ProcessingStep step);
    /// Logs that the innermost running step is finished, and removes it from the
    /// running steps. The current step stays the last one that began, and no signal
    /// is emitted: a failure found afterwards can then be attributed to that step.
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
    /// \param arg1, arg2  details of the failure, such as a file name: arguments 0
    ///     and 1 of procFailArg(). Empty arguments at the end are not kept
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
