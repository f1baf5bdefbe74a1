#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark {

/// What the clipboard's test peers have in common: one X client that reads and serves selections
/// in plain blocking steps. It shares no code with what it tests.
class XPeer {
public:
    /// `display` such as ":0"; null for the one that the environment names.
    explicit XPeer(const char* display = nullptr);
    ~XPeer();
    XPeer(const XPeer&) = delete;
    XPeer& operator=(const XPeer&) = delete;

    struct Value {
        std::string type;
        int format = 0;
        QByteArray data;
    };

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
    [[nodiscard]] std::string name(xcb_atom_t atom) const;
    [[nodiscard]] xcb_window_t createWindow(std::uint32_t eventMask) const;

    /// The server's present time.
    [[nodiscard]] xcb_timestamp_t time();

    /// Waits for an event that `matches` accepts; others go to onOther. Ends the program when the
    /// server goes away.
    using Event = std::function<bool(const xcb_generic_event_t&)>;
    void waitFor(const Event& matches);
    std::function<void(const xcb_generic_event_t&)> onOther;

    /// The events that have arrived, to onOther.
    void dispatchPending();

    /// Takes a property, whole; nothing when there is none.
    std::optional<Value> takeProperty(xcb_window_t window, xcb_atom_t property);

    /// Asks CLIPBOARD for a target and reads what comes.
    std::optional<Value> read(const std::string& target);

    /// The two halves of read(): the answer, which may be of type INCR, and the pieces.
    std::optional<Value> ask(xcb_window_t window, const std::string& target);
    Value readPieces(xcb_window_t window, xcb_atom_t property);

    /// Answers a request, in one piece; nothing refuses.
    void answer(const xcb_selection_request_event_t& request, const std::optional<Value>& value);
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);

    /// Takes a selection; the window that has it now.
    xcb_window_t own(const std::string& selection);

    /// The window that has a selection, or None.
    [[nodiscard]] xcb_window_t owner(const std::string& selection) const;

private:
    xcb_connection_t* m_connection;
    xcb_screen_t* m_screen;
};

/// Items as a property of 32 bits holds them.
QByteArray itemsOf32(const std::vector<std::uint32_t>& items);
std::vector<std::uint32_t> itemsIn(const QByteArray& data);

/// Bytes that look like nothing in particular, the same for the same size everywhere.
QByteArray patternOf(qsizetype size);

/// One line for a value: type, format, size, and the data if they are short text, else a digest.
QByteArray describe(const std::optional<XPeer::Value>& value);

/// Writes a line to standard output, at once.
void print(const QByteArray& line);

}  // namespace quietlark
