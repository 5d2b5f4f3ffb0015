// SPDX-License-Identifier: Apache-2.0
// A request by SetThreadExecutionState belongs to the calling thread: it ends with that
// thread, and no other thread can withdraw it. Therefore a thread of its own makes the
// request, waits, and withdraws it.
#include "last_error_windows.h"
#include "sleep_inhibitor.h"

#include <windows.h>

namespace lumo::power {
namespace {

/// A Windows handle that is closed; null if there is none.
class Handle
{
public:
    explicit Handle(HANDLE handle)
        : m_handle(handle)
    {}
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (m_handle != nullptr) {
            CloseHandle(m_handle);
        }
    }

    [[nodiscard]] HANDLE get() const { return m_handle; }

private:
    HANDLE m_handle;
};

class RequestingThread : public SleepInhibitor
{
public:
    RequestingThread()
        : m_answered(CreateEventW(nullptr, TRUE, FALSE, nullptr))
        , m_stop(CreateEventW(nullptr, TRUE, FALSE, nullptr))
        , m_thread(
              m_answered.get() != nullptr && m_stop.get() != nullptr
                  ? CreateThread(nullptr, 0, &RequestingThread::run, this, 0, nullptr)
                  : nullptr)
    {
        if (m_thread.get() == nullptr) {
            m_error = getLastErrorAsString();
        } else {
            WaitForSingleObject(m_answered.get(), INFINITE);
        }
    }

    ~RequestingThread() override
    {
        if (m_thread.get() != nullptr) {
            SetEvent(m_stop.get());
            WaitForSingleObject(m_thread.get(), INFINITE);
        }
    }

    /// Empty if the system grants the request.
    [[nodiscard]] const std::string& error() const { return m_error; }

private:
    static DWORD WINAPI run(void* self)
    {
        auto& request = *static_cast<RequestingThread*>(self);
        const bool granted = SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED) != 0;
        if (!granted) {
            request.m_error = getLastErrorAsString();
        }
        SetEvent(request.m_answered.get());
        WaitForSingleObject(request.m_stop.get(), INFINITE);
        if (granted) {
            SetThreadExecutionState(ES_CONTINUOUS);
        }
        return 0;
    }

    std::string m_error;
    Handle m_answered;
    Handle m_stop;
    Handle m_thread; ///< last: it uses the others
};

} // namespace

std::unique_ptr<SleepInhibitor> inhibitSleep(std::string& error)
{
    auto request = std::make_unique<RequestingThread>();
    if (!request->error().empty()) {
        error = "Windows refuses: " + request->error();
        return nullptr;
    }
    return request;
}

} // namespace lumo::power
