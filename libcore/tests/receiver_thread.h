// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QThread>

#include <mutex>
#include <utility>
#include <vector>

namespace lumo {

/// A QObject on a thread of its own, with what its slots have received there.
template <typename Item>
class ReceiverThread
{
public:
    ReceiverThread()
    {
        m_receiver.moveToThread(&m_thread);
        m_thread.start();
    }
    ReceiverThread(const ReceiverThread&) = delete;
    ReceiverThread& operator=(const ReceiverThread&) = delete;
    ~ReceiverThread() { (void)finish(); }

    /// The context object for connections.
    [[nodiscard]] QObject* receiver() { return &m_receiver; }

    /// To be called by slots.
    void receive(Item item)
    {
        const std::lock_guard lock(m_mutex);
        m_ownThread = m_ownThread && QThread::currentThread() == &m_thread;
        m_items.push_back(std::move(item));
    }

    /// Lets what is queued so far arrive, ends the thread, and returns the items.
    [[nodiscard]] std::vector<Item> finish()
    {
        // Behind the signals in the receiver's queue.
        QMetaObject::invokeMethod(
            &m_receiver, [this] { m_thread.quit(); }, Qt::QueuedConnection);
        m_thread.wait();
        const std::lock_guard lock(m_mutex);
        return m_items;
    }

    /// Whether all that arrived did so on the thread.
    [[nodiscard]] bool onItsThread() const
    {
        const std::lock_guard lock(m_mutex);
        return m_ownThread;
    }

private:
    QThread m_thread;
    QObject m_receiver;
    mutable std::mutex m_mutex;
    bool m_ownThread = true;
    std::vector<Item> m_items;
};

} // namespace lumo
