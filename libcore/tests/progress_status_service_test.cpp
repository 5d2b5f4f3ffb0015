// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/progress_status_service.h"
#include "lumo/processing/processing_blob.h"
#include "receiver_thread.h"

#include <QMetaMethod>
#include <gtest/gtest.h>

namespace lumo {
namespace {

using State = ProgressStatusService::State;

TEST(ProgressStatusService, ProgressAndStopAreThoseOfTheProcess)
{
    ProgressStatusService service;
    ProcessingBlob& blob = ProcessingBlob::instance();
    service.start();
    EXPECT_FALSE(service.shouldStop());
    service.setProgress(40, "matching");
    EXPECT_EQ(blob.progress(), (Progress{40, "matching"}));
    service.setProgress(1ULL, 4ULL, "adjusting");
    EXPECT_EQ(blob.progress(), (Progress{25, "adjusting"}));
    service.stop();
    EXPECT_TRUE(service.shouldStop());
    EXPECT_TRUE(blob.shouldStop());
    service.start();
    EXPECT_FALSE(blob.shouldStop());
}

TEST(ProgressStatusService, TheCurrentImageReachesAnotherThreadByQualifiedTypeName)
{
    ProgressStatusService service;
    service.setCurrentImage("nobody listens", State::Waiting);
    EXPECT_NE(QMetaType::type("lumo::ProgressStatusService::State"), QMetaType::UnknownType);
    EXPECT_GE(
        service.metaObject()->indexOfSignal(
            "updateCurrentImage(QString,lumo::ProgressStatusService::State)"),
        0);
    using Image = std::pair<QString, State>;
    ReceiverThread<Image> thread;
    QObject::connect(
        &service, &ProgressStatusService::updateCurrentImage, thread.receiver(),
        [&thread](const QString& path, State state) {
            thread.receive({path, state});
        },
        Qt::QueuedConnection);
    std::vector<Image> expected;
    for (int i = 0; i < 500; ++i) {
        expected.emplace_back(QString::number(i), State(i % 5));
        service.setCurrentImage(expected.back().first, expected.back().second);
    }
    EXPECT_EQ(thread.finish(), expected);
    EXPECT_TRUE(thread.onItsThread());
}

} // namespace
} // namespace lumo
