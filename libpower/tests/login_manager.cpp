// SPDX-License-Identifier: Apache-2.0
#include "login_manager.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>

namespace {

constexpr int kStartTimeoutMs = 30000;

QString connectionName()
{
    return QStringLiteral("login manager of the tests");
}

const QString& busFolder()
{
    static const QTemporaryDir folder;
    static const QString path = folder.path();
    return path;
}

QByteArray busAddress()
{
    return "unix:path=" + busFolder().toUtf8() + "/bus";
}

/// A process reads the address once, when it first asks for a bus of any kind, as Qt's
/// network does in other tests: it is set before them all, and all buses have it.
const bool kAddressIsSet = qputenv("DBUS_SYSTEM_BUS_ADDRESS", busAddress());

QByteArray busConfiguration(const QByteArray& address)
{
    return "<busconfig><type>session</type><listen>" + address +
           "</listen><auth>EXTERNAL</auth><policy context=\"default\">"
           "<allow user=\"*\"/><allow own=\"*\"/><allow send_destination=\"*\"/>"
           "<allow receive_sender=\"*\"/></policy></busconfig>";
}

} // namespace

InhibitObject::~InhibitObject()
{
    for (const int pipe : m_pipes) {
        close(pipe);
    }
}

QString InhibitObject::introspect(const QString& /*path*/) const
{
    return {};
}

bool InhibitObject::handleMessage(const QDBusMessage& message, const QDBusConnection& connection)
{
    if (message.member() != QLatin1String("Inhibit")) {
        return false;
    }
    const std::lock_guard lock(m_mutex);
    QStringList request;
    for (const QVariant& argument : message.arguments()) {
        request.append(argument.toString());
    }
    m_requests.push_back(request);
    if (refuse) {
        return connection.send(
            message.createErrorReply(QDBusError::AccessDenied, QStringLiteral("not today")));
    }
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return false;
    }
    m_pipes.push_back(ends[0]);
    const bool sent =
        connection.send(message.createReply(QVariant::fromValue(QDBusUnixFileDescriptor(ends[1]))));
    close(ends[1]);
    return sent;
}

std::vector<QStringList> InhibitObject::requests() const
{
    const std::lock_guard lock(m_mutex);
    return m_requests;
}

bool InhibitObject::released(int timeoutMs) const
{
    const std::lock_guard lock(m_mutex);
    return std::all_of(m_pipes.begin(), m_pipes.end(), [timeoutMs](int pipe) {
        pollfd descriptor{pipe, POLLIN, 0};
        return poll(&descriptor, 1, timeoutMs) == 1 && (descriptor.revents & POLLHUP) != 0;
    });
}

LoginManager::LoginManager()
{
    startBus();
}

void LoginManager::startBus()
{
    ASSERT_TRUE(kAddressIsSet);
    QFile configuration(busFolder() + QStringLiteral("/bus.conf"));
    ASSERT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write(busConfiguration(busAddress()));
    configuration.close();
    m_bus.start(
        QStringLiteral("dbus-daemon"),
        {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
         QStringLiteral("--config-file=") + configuration.fileName()});
    ASSERT_TRUE(m_bus.waitForStarted() && m_bus.waitForReadyRead(kStartTimeoutMs))
        << "dbus-daemon: " << qPrintable(m_bus.errorString())
        << m_bus.readAllStandardError().constData();
    serve(QString::fromUtf8(busAddress()));
}

void LoginManager::serve(const QString& address)
{
    m_thread.start();
    m_object.moveToThread(&m_thread); // the test's own thread waits for the answer
    QDBusConnection connection = QDBusConnection::connectToBus(address, connectionName());
    ASSERT_TRUE(connection.isConnected()) << qPrintable(connection.lastError().message());
    ASSERT_TRUE(
        connection.registerVirtualObject(QStringLiteral("/org/freedesktop/login1"), &m_object));
    ASSERT_TRUE(connection.registerService(QStringLiteral("org.freedesktop.login1")))
        << qPrintable(connection.lastError().message());
}

LoginManager::~LoginManager()
{
    QDBusConnection::disconnectFromBus(connectionName());
    m_thread.quit();
    m_thread.wait();
    m_bus.kill();
    m_bus.waitForFinished();
}
