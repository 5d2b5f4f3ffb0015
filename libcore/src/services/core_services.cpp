// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/core_services.h"

#include "lumo/core/services/application_state_service.h"
#include "lumo/core/services/camera_model_service.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/services/status_bar_service.h"
#include "lumo/core/xml/register_xml_converters.h"
#include "lumo/optimisation/ceres_logger.h"

namespace lumo {

CoreServices& CoreServices::instance()
{
    static CoreServices theOne;
    return theOne;
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
