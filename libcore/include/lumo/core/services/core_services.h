// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "lumo/core/export.h"

#include <memory>

namespace lumo {

class ApplicationStateService;
class CameraModelService;
class ProgressStatusService;
class StatusBarService;

/// Owns the services of the process, one of each.
///
/// The first call of instance() makes the one registry, on any thread; concurrent
/// calls wait for it. Making the registry also registers the XML conversion steps
/// and redirects the solvers' messages to the log. An application should therefore
/// call instance() first of all, on its main thread. The registry lives until static
/// objects are destroyed, so longer than Qt's application object.
class LUMO_CORE_EXPORT CoreServices
{
public:
    static CoreServices& instance();
    /// The registry if instance() has made it, else null. Makes nothing, so that code
    /// that runs on any thread can use the services of an application that has them.
    [[nodiscard]] static CoreServices* existing() noexcept;

    CoreServices(const CoreServices&) = delete;
    CoreServices& operator=(const CoreServices&) = delete;
    /// Deletes the services in the reverse order of their creation.
    virtual ~CoreServices();

    // The references are valid as long as the registry lives. From any thread.
    [[nodiscard]] ApplicationStateService& applicationState() { return *m_applicationState; }
    [[nodiscard]] ProgressStatusService& progressStatus() { return *m_progressStatus; }
    [[nodiscard]] StatusBarService& statusBar() { return *m_statusBar; }
    [[nodiscard]] CameraModelService& cameraModelService() { return *m_cameraModelService; }

protected:
    /// For instance(), and for tests, which derive to have services of their own.
    CoreServices();

private:
    // Made in this order, deleted in the reverse one.
    std::unique_ptr<ApplicationStateService> m_applicationState;
    std::unique_ptr<ProgressStatusService> m_progressStatus;
    std::unique_ptr<StatusBarService> m_statusBar;
    std::unique_ptr<CameraModelService> m_cameraModelService;
};

// The services of CoreServices::instance(). The class of each service documents which
// calls are allowed on which thread.

/// CoreServices::applicationState() of the process.
[[nodiscard]] LUMO_CORE_EXPORT ApplicationStateService& serviceApplicationState();
/// CoreServices::progressStatus() of the process.
[[nodiscard]] LUMO_CORE_EXPORT ProgressStatusService& serviceProgress();
/// CoreServices::statusBar() of the process.
[[nodiscard]] LUMO_CORE_EXPORT StatusBarService& serviceStatusBar();
/// CoreServices::cameraModelService() of the process.
[[nodiscard]] LUMO_CORE_EXPORT CameraModelService& serviceCamDB();

} // namespace lumo
