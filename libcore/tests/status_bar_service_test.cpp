// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/services/status_bar_service.h"
#include "receiver_thread.h"

#include <gtest/gtest.h>

namespace lumo {
namespace {

/// Makes every call once, with and without a receiver.
void callAll(StatusBarService& service)
{
    service.setProgress(3, 1, 9, "p");
    service.setMessage("m");
    service.flashMessage("f", 2.5F);
    service.busyMessage("b");
    service.clear();
}

TEST(StatusBarService, EachCallReachesAReceiverOnAnotherThreadInOrderAndHarmlesslyNone)
{
    StatusBarService service;
    callAll(service);
    ReceiverThread<QString> thread;
    const auto connect = [&](auto signal, auto slot) {
        QObject::connect(&service, signal, thread.receiver(), slot, Qt::QueuedConnection);
    };
    connect(
        &StatusBarService::signalSetProgress, [&](int step, int min, int max, const QString& msg) {
            thread.receive(QStringLiteral("%1/%2-%3 %4").arg(step).arg(min).arg(max).arg(msg));
        });
    connect(&StatusBarService::signalSetMessage, [&](const QString& msg) {
        thread.receive("set " + msg);
    });
    connect(&StatusBarService::signalFlashMessage, [&](const QString& msg, float timeout) {
        thread.receive("flash " + msg + ' ' + QString::number(timeout));
    });
    connect(&StatusBarService::signalBusyMessage, [&](const QString& msg) {
        thread.receive("busy " + msg);
    });
    connect(&StatusBarService::signalClear, [&] { thread.receive("clear"); });
    std::vector<QString> expected;
    for (int i = 0; i < 100; ++i) {
        callAll(service);
        for (const char* text : {"3/1-9 p", "set m", "flash f 2.5", "busy b", "clear"}) {
            expected.emplace_back(text);
        }
    }
    EXPECT_EQ(thread.finish(), expected);
    EXPECT_TRUE(thread.onItsThread());
}

} // namespace
} // namespace lumo
