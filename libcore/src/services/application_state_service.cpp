// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/application_state_service.h"

#include "lumo/foundation/log.h"

#include <QMetaEnum>

namespace lumo {

namespace {

using State = ApplicationStateService::State;

QString nameOf(State state)
{
    const char* name = QMetaEnum::fromType<State>().valueToKey(static_cast<int>(state));
    return name != nullptr ? QString::fromLatin1(name) : QStringLiteral("Unknown");
}

} // namespace

ApplicationStateService::ApplicationStateService(QObject* parent)
    : QObject(parent)
{
    // For connections that are made by name; the others register it themselves.
    qRegisterMetaType<ProcessingStep>("lumo::ProcessingStep");
}

ApplicationStateService::~ApplicationStateService() = default;

void ApplicationStateService::setState(State state)
{
    // One atomic step: of two threads that set the same state only one emits.
    if (m_state.exchange(state) == state) {
        return;
    }
    Q_EMIT stateChanged();
    if (state >= State::Started && state <= State::Step3Done) {
        log::info() << nameOf(state);
    }
}

QString ApplicationStateService::stateString() const
{
    return nameOf(m_state);
}

bool ApplicationStateService::isLoadingProject() const
{
    return m_state == State::ProjectLoading;
}

bool ApplicationStateService::isProjectLoaded() const
{
    return m_state.load() >= State::ProjectLoaded;
}

bool ApplicationStateService::isProcessing() const
{
    const State state = m_state;
    return state == State::Step1Running || state == State::Step2Running ||
           state == State::Step3Running || state == State::OtherRunning;
}

bool ApplicationStateService::isProcessingStep1() const
{
    return m_state == State::Step1Running;
}

bool ApplicationStateService::isProcessingStep2() const
{
    return m_state == State::Step2Running;
}

bool ApplicationStateService::isProcessingStep3() const
{
    return m_state == State::Step3Running;
}

void ApplicationStateService::startProcessingStep(ProcessingStep step)
{
    const ProcessingStep previous = m_step.exchange(step);
    if (previous == step) {
        return;
    }
    Q_EMIT processingStepChanged(previous, step);
    if (step <= ProcessingStep::None) {
        return;
    }
    log::info() << QStringLiteral("Substep %1 started.").arg(text::toString(step));
    m_runningSteps.push_back(step);
}

bool ApplicationStateService::stopProcessingStep()
{
    if (m_runningSteps.empty()) {
        log::warning() << "Call substep finish but stack is empty";
        return false;
    }
    const ProcessingStep step = m_runningSteps.back();
    log::info() << QStringLiteral("Substep %1 finished.").arg(text::toString(step));
    m_runningSteps.pop_back();
    return true;
}

void ApplicationStateService::cleanSteps()
{
    const ProcessingStep previous = m_step.exchange(ProcessingStep::None);
    Q_EMIT processingStepChanged(previous, ProcessingStep::None);
    m_runningSteps.clear();
}

void ApplicationStateService::setProcFailure(
    ProcFailCode code, const QString& arg1, const QString& arg2)
{
    m_failCode = code;
    m_failStep = m_step;
    m_failArgs.clear();
    if (!arg1.isEmpty() || !arg2.isEmpty()) {
        m_failArgs.append(arg1);
    }
    if (!arg2.isEmpty()) {
        m_failArgs.append(arg2);
    }
}

void ApplicationStateService::clearProcFailure()
{
    m_failCode = ProcFailCode::None;
    m_failStep = ProcessingStep::None;
    m_failArgs.clear();
}

QString ApplicationStateService::procFailArg(int i) const
{
    return m_failArgs.value(i);
}

} // namespace lumo
