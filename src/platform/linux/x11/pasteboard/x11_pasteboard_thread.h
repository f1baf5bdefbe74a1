#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

#include <QByteArray>

#include "platform/linux/x11/pasteboard/x11_pasteboard_limits.h"
#include "platform/linux/x11/pasteboard/x11_pasteboard_session.h"

namespace quietlark {

/// The pasteboard's thread: it carries out commands one after the other, and answers other programs
/// at any time.
class X11PasteboardThread {
public:
    using Command = std::function<void(X11PasteboardSession&)>;

    /// Connects on the calling thread, the main one: no two threads may call xcb_connect() at once,
    /// because libXau keeps the name of the authority file in a static buffer.
    X11PasteboardThread(const QByteArray& display, X11PasteboardLimits limits);

    /// Carries out what was ordered, hands over to a clipboard manager, and ends the thread. Waits
    /// for that, but not for other programs beyond the limits, and not for an X server that hangs.
    ~X11PasteboardThread();
    X11PasteboardThread(const X11PasteboardThread&) = delete;
    X11PasteboardThread& operator=(const X11PasteboardThread&) = delete;

    /// Any thread. The command runs on the pasteboard's thread, after those before it.
    void order(Command command);

private:
    void run();
    void serve();
    bool carryOutNext();
    bool isQuitting();
    Command nextOrder();
    void wait(std::optional<X11PasteboardSession::Clock::time_point> until);
    void wake();

    X11PasteboardLimits m_limits;
    X11PasteboardSession m_session;  ///< m_thread's, once that runs
    int m_wakeFileDescriptor;

    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::deque<Command> m_orders;  ///< guarded by m_mutex
    bool m_isQuitting = false;     ///< guarded by m_mutex
    bool m_hasEnded = false;       ///< guarded by m_mutex

    std::thread m_thread;
};

}  // namespace quietlark
