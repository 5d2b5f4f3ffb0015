// SPDX-License-Identifier: Apache-2.0
// The login manager's inhibitor lock (org.freedesktop.login1(5)). The lock lasts until the
// file descriptor that it returns is closed, which the kernel does for a killed process.
#include "sleep_inhibitor.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>

namespace lumo::power {
namespace {

constexpr int kTimeoutMs = 5000;

/// A connection of its own for one call: the one that Qt shares is not made again
/// after the bus was restarted.
class SystemBus
{
public:
    SystemBus()
        : m_connection(QDBusConnection::connectToBus(QDBusConnection::SystemBus, name()))
    {}
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;
    ~SystemBus() { QDBusConnection::disconnectFromBus(name()); }

    [[nodiscard]] const QDBusConnection& connection() const { return m_connection; }

private:
    static QString name() { return QStringLiteral("lumo.power"); }

    QDBusConnection m_connection;
};

class LoginManagerLock : public SleepInhibitor
{
public:
    explicit LoginManagerLock(const QDBusUnixFileDescriptor& descriptor)
        : m_descriptor(descriptor)
    {}

private:
    QDBusUnixFileDescriptor m_descriptor;
};

QDBusMessage inhibitCall()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
        QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("Inhibit"));
    call << QStringLiteral("sleep:idle") << QStringLiteral("lumo")
         << QStringLiteral("Images are being processed") << QStringLiteral("block");
    return call;
}

} // namespace

std::unique_ptr<SleepInhibitor> inhibitSleep(std::string& error)
{
    const SystemBus bus;
    if (!bus.connection().isConnected()) {
        error = "no system bus: " + bus.connection().lastError().message().toStdString();
        return nullptr;
    }
    const QDBusMessage reply = bus.connection().call(inhibitCall(), QDBus::Block, kTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        error = "the login manager refuses: " + reply.errorMessage().toStdString();
        return nullptr;
    }
    const auto descriptor = reply.arguments().value(0).value<QDBusUnixFileDescriptor>();
    if (!descriptor.isValid()) {
        error = "the login manager's answer contains no lock";
        return nullptr;
    }
    return std::make_unique<LoginManagerLock>(descriptor);
}

} // namespace lumo::power
