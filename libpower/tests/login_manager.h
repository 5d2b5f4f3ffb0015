// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QStringList>
#include <QThread>

#include <atomic>
#include <mutex>
#include <vector>

/// Answers Inhibit as the login manager does: with one end of a pipe, of which it
/// keeps the other, and on which it sees the end of the lock.
class InhibitObject : public QDBusVirtualObject
{
public:
    ~InhibitObject() override;

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    std::atomic<bool> refuse = false;

    [[nodiscard]] std::vector<QStringList> requests() const;
    /// Whether all locks are released, or are so within the time.
    [[nodiscard]] bool released(int timeoutMs) const;

private:
    mutable std::mutex m_mutex;
    std::vector<QStringList> m_requests; ///< the arguments of each
    std::vector<int> m_pipes;            ///< ends that are read
};

/// A system bus of the test's own with a login manager on it, for this process and
/// those it starts. One at a time; when it is gone, they have no system bus.
class LoginManager
{
public:
    /// Fails the running test if dbus-daemon does not start.
    LoginManager();
    LoginManager(const LoginManager&) = delete;
    LoginManager& operator=(const LoginManager&) = delete;
    ~LoginManager();

    void refuse(bool on) { m_object.refuse = on; }
    [[nodiscard]] std::vector<QStringList> requests() const { return m_object.requests(); }
    [[nodiscard]] bool held() const { return !m_object.released(0); }
    /// Waits for it, for 30 seconds at most.
    [[nodiscard]] bool released() const { return m_object.released(30000); }

private:
    void startBus();
    void serve(const QString& address);

    QProcess m_bus;
    QThread m_thread;
    InhibitObject m_object;
};
