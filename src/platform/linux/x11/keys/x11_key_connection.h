#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <vector>

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <xcb/xcb.h>

#include "platform/linux/x11/keys/own_key_events.h"
#include "platform/unavailable.h"

namespace quietlark {

/// A connection to the X server that sees every key and can fake keys: what the observer and the
/// synthesizer of keys share, so that the one can leave out what the other does. Main thread.
class X11KeyConnection final : public QObject {
    Q_OBJECT

public:
    /// `display` such as ":0"; empty for the one that $DISPLAY names.
    explicit X11KeyConnection(const QByteArray& display = {});

    /// For requests of any kind, harmless also when the server is gone. Who waits for a reply calls
    /// deliverSoon() afterwards: the wait takes in events, which the socket then no longer
    /// announces.
    [[nodiscard]] xcb_connection_t* xcb() const { return m_connection.get(); }
    void deliverSoon();

    [[nodiscard]] xcb_window_t rootWindow() const { return m_root; }

    /// Why keys cannot be observed, or nothing when they can.
    [[nodiscard]] std::optional<Unavailable> cannotObserve() const;

    /// Why keys cannot be faked, or nothing when they can.
    [[nodiscard]] std::optional<Unavailable> cannotSynthesize() const;

    /// Has the server press or release a key of one of its keyboards, as if the user had done it.
    /// rawKey() does not report it. Only where cannotSynthesize() answers nothing.
    void fakeKey(std::uint16_t device, XKeycode key, bool pressed);

    struct ObservedKey {
        RawKeyEvent event;
        std::uint32_t layout = 0;  ///< in effect when it happened
        bool ours = false;
    };
    /// Waits until the server has carried out all requests, some tens of microseconds; answers what
    /// has happened to the keys since the last delivery, in order.
    [[nodiscard]] std::vector<ObservedKey> finishRequests();

Q_SIGNALS:
    /// Somebody else has pressed or released a key, while `layout` of the keymap was in effect. The
    /// server does not repeat a key here.
    void rawKey(const quietlark::RawKeyEvent& event, std::uint32_t layout);

    /// The keymap is another one from now on; emitted before the rawKey() of the next key.
    void keymapChanged();

    /// The server has gone away: nothing is seen or faked any more. Emitted once, from the event
    /// loop, and only where there was a server to begin with.
    void displayLost();

private:
    void observeKeys();
    void observeKeymap();
    void deliver();
    void readEvents();
    void read(const xcb_generic_event_t& event);
    void readKeymapEvent(const xcb_generic_event_t& event);

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::optional<QSocketNotifier> m_notifier;
    xcb_window_t m_root = XCB_NONE;
    bool m_hasRawEvents = false;
    bool m_hasXtest = false;
    std::uint8_t m_inputOpcode = 0;
    std::uint8_t m_inputFirstEvent = 0;
    std::uint8_t m_xkbFirstEvent = 0;
    std::uint32_t m_layout = 0;
    OwnKeyEvents m_own;
    std::deque<ObservedKey> m_undelivered;
};

}  // namespace quietlark
