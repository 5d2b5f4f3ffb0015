// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/application_state_service.h"
#include "lumo/core/services/camera_model_service.h"
#include "lumo/core/services/core_services.h"
#include "lumo/core/services/find_camera_model.h"
#include "lumo/core/services/progress_status_service.h"
#include "lumo/core/services/status_bar_service.h"
#include "lumo/core/xml/xml_conversion.h"
#include "test_cameras.h"

#include <QSettings>
#include <gtest/gtest.h>

#include <barrier>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace lumo {
namespace {

class FreshServices : public CoreServices
{};

TEST(CoreServices, ManyThreadsGetTheSameRegistry)
{
    constexpr int kThreads = 8;
    using Addresses = std::tuple<void*, void*, void*, void*, void*>;
    std::vector<Addresses> seen(kThreads);
    std::barrier together(kThreads);
    std::vector<std::thread> threads;
    for (Addresses& mine : seen) {
        threads.emplace_back([&mine, &together] {
            together.arrive_and_wait();
            mine = {
                &serviceCamDB(), &serviceStatusBar(), &serviceProgress(),
                &serviceApplicationState(), &CoreServices::instance()};
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(std::set<Addresses>(seen.begin(), seen.end()).size(), 1u);
    EXPECT_NE(std::get<0>(seen.front()), nullptr);
    EXPECT_EQ(&CoreServices::instance().statusBar(), &serviceStatusBar());
    EXPECT_EQ(CoreServices::existing(), &CoreServices::instance());
}

TEST(CoreServices, TheStepsOfXmlConversionAreRegistered)
{
    (void)CoreServices::instance();
    EXPECT_NE(extensibleFactoryInstance<IXmlConversion>().create("CamDB16_17"), nullptr);
    EXPECT_NE(extensibleFactoryInstance<IXmlConversion>().create("Xslt"), nullptr);
}

TEST(CoreServices, AFreshRegistryHasServicesOfItsOwnAndDeletesThemInReverseOrder)
{
    std::vector<std::string> deleted;
    const auto watch = [&deleted](QObject& object, const char* name) {
        EXPECT_EQ(object.parent(), nullptr);
        QObject::connect(
            &object, &QObject::destroyed, [&deleted, name] { deleted.emplace_back(name); });
    };
    {
        FreshServices services;
        EXPECT_NE(&services.statusBar(), &serviceStatusBar());
        watch(services.applicationState(), "application state");
        watch(services.progressStatus(), "progress");
        watch(services.statusBar(), "status bar");
        // The database has the only reference to the settings, so they go with it.
        CameraDbSettings settings;
        settings.appSettings =
            std::make_shared<QSettings>("never_written.ini", QSettings::IniFormat);
        watch(*settings.appSettings, "camera models");
        services.cameraModelService().cameraModelDb().reset(settings);
    }
    EXPECT_EQ(
        deleted,
        (std::vector<std::string>{"camera models", "status bar", "progress", "application state"}));
}

class FindCameraModel : public testing::Test
{
protected:
    FindCameraModel()
    {
        exif.model = "Cam";
        exif.focalLengthMm = 5.0;
        exif.imageWidth = 4000;
        exif.imageHeight = 3000;
        exif.serialNumber = "7";
    }
    ~FindCameraModel() override { db().clear(); }

    static CameraModelDb& db() { return serviceCamDB().cameraModelDb(); }

    /// Into the internal table.
    static void hold(const QString& name, const QString& serialNumber)
    {
        cameradb::CameraDBData data = db().internalData();
        data.cameras.emplace(name, testModel(name, serialNumber));
        db().setInternalData(data);
    }

    ExifInfo exif;
};

TEST_F(FindCameraModel, TakesTheModelNamedAsTheIdentifierForExactlyThisBody)
{
    const QString name = exif.exifId().first;
    hold(name, "8");
    EXPECT_EQ(findCameraModel(exif), CameraData());
    hold(name, "");
    EXPECT_EQ(findCameraModel(exif), CameraData()); // not even the generic one
    hold(name, "7");
    const CameraData camera = findCameraModel(exif);
    EXPECT_EQ(camera.serialNumber, "7");
    EXPECT_EQ(camera.params.name, name);
    EXPECT_EQ(camera.params.source, CameraSource::InternalDatabase);
    EXPECT_TRUE(camera.params.equal(testModel(name).params, true));
}

TEST_F(FindCameraModel, TheUsersModelWinsAndMappingsAreNotAsked)
{
    const QString name = exif.exifId().first;
    hold("Other", "7");
    cameradb::CameraDBData user;
    user.mappings.emplace(name, "Other");
    ASSERT_TRUE(db().setUserData(user, cameradb::kCurrentVersion));
    EXPECT_EQ(findCameraModel(exif), CameraData());

    hold(name, "7");
    user.cameras.emplace(name, testModel(name, "7"));
    ASSERT_TRUE(db().setUserData(user, cameradb::kCurrentVersion));
    EXPECT_EQ(findCameraModel(exif).params.source, CameraSource::EditedDatabase);
    EXPECT_EQ(findCameraModel(ExifInfo()), CameraData());
}

} // namespace
} // namespace lumo
