// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/core_services.h"

#include "lumo/core/services/application_state_service.h"
#include "lumo/core/services/camera_model_service.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/services/status_bar_service.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/optimisation/ceres_logger.h"

#include <atomic>

namespace lumo {

namespace {

std::atomic<CoreServices*> theExisting = nullptr;

/// The registry of the process. It is announced when all services are there, and
/// withdrawn before the first of them is deleted.
class ProcessServices : public CoreServices
{
public:
    ProcessServices() { theExisting = this; }
    ~ProcessServices() override { theExisting = nullptr; }
};

} // namespace

CoreServices& CoreServices::instance()
{
    static ProcessServices theOne;
    return theOne;
}

CoreServices* CoreServices::existing() noexcept
{
    return theExisting;
}

CoreServices::CoreServices()
    : m_applicationState(new ApplicationStateService(nullptr)) // its constructor is not public
    , m_progressStatus(std::make_unique<ProgressStatusService>(nullptr))
    , m_statusBar(std::make_unique<StatusBarService>(nullptr))
    , m_cameraModelService(std::make_unique<CameraModelService>())
{
    registerXmlConverters();
    optimization::initCeresLumoLogger();
}

CoreServices::~CoreServices() = default;

ApplicationStateService& serviceApplicationState()
{
    return CoreServices::instance().applicationState();
}

ProgressStatusService& serviceProgress()
{
    return CoreServices::instance().progressStatus();
}

StatusBarService& serviceStatusBar()
{
    return CoreServices::instance().statusBar();
}

CameraModelService& serviceCamDB()
{
    return CoreServices::instance().cameraModelService();
}

} // namespace lumo
