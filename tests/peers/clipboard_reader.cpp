// clipboard_reader
//
// Another program that pastes. It does what the lines on standard input say, one after the other,
// and prints a line for each:
//   focus                   takes the keyboard focus: "focused"
//   hover                   has its window under the pointer, without the focus: "hovering"
//   get TARGET              reads: "TYPE FORMAT SIZE DATA" or "refused"
//   targets                 the names that TARGETS lists
//   multiple TARGET...      reads all at once: "TARGET: TYPE FORMAT SIZE DATA" for each, and "done"
//   begin TARGET            reads up to the announcement of pieces: "begun", or as for get
//   finish                  reads the pieces of what was begun: as for get
//   leave TARGET            asks, and destroys the window at once: "left"
//   drop                    destroys the window of what was begun: "dropped"
//   nothing TARGET          asks without naming a property, as old clients do: as for get
//   owner                   whether there is one: "owned" or "free"

#include <iostream>
#include <sstream>
#include <string>

#include "peers/x_peer.h"

namespace quietlark {
namespace {

class ClipboardReader {
public:
    void obey(const std::string& command, const std::vector<std::string>& arguments);

private:
    void showWindow(std::uint32_t size);
    void focus();
    void hover();
    void targets();
    void multiple(const std::vector<std::string>& targets);
    void begin(const std::string& target);
    void finish();
    void leave(const std::string& target);
    void drop();
    void withoutProperty(const std::string& target);
    void owner();

    XPeer m_peer;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_window_t m_transferWindow = XCB_WINDOW_NONE;
};

void ClipboardReader::obey(const std::string& command, const std::vector<std::string>& arguments) {
    const std::string target = arguments.empty() ? std::string() : arguments.front();
    if (command == "focus") return focus();
    if (command == "hover") return hover();
    if (command == "get") return print(describe(m_peer.read(target)));
    if (command == "targets") return targets();
    if (command == "multiple") return multiple(arguments);
    if (command == "begin") return begin(target);
    if (command == "finish") return finish();
    if (command == "leave") return leave(target);
    if (command == "drop") return drop();
    if (command == "nothing") return withoutProperty(target);
    if (command == "owner") return owner();
    print("unknown command");
}

void ClipboardReader::showWindow(std::uint32_t size) {
    m_window = m_peer.createWindow(XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_FOCUS_CHANGE);
    const std::uint32_t sizes[] = {size, size};
    xcb_configure_window(m_peer.get(), m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         sizes);
    xcb_map_window(m_peer.get(), m_window);
    m_peer.waitFor([](const auto& event) { return event.response_type == XCB_EXPOSE; });
}

void ClipboardReader::focus() {
    showWindow(10);
    xcb_set_input_focus(m_peer.get(), XCB_INPUT_FOCUS_PARENT, m_window, XCB_CURRENT_TIME);
    m_peer.waitFor([](const auto& event) { return event.response_type == XCB_FOCUS_IN; });
    print("focused");
}

void ClipboardReader::hover() {
    showWindow(2000);
    print("hovering");
}

void ClipboardReader::targets() {
    const auto list = m_peer.read("TARGETS");
    if (!list) return print("refused");
    QByteArray names;
    for (const auto atom : itemsIn(list->data))
        names += (names.isEmpty() ? "" : " ") + QByteArray::fromStdString(m_peer.name(atom));
    print(names);
}

void ClipboardReader::multiple(const std::vector<std::string>& targets) {
    const xcb_window_t window = m_peer.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    std::vector<std::uint32_t> pairs;
    for (const auto& target : targets) {
        pairs.push_back(m_peer.atom(target));
        pairs.push_back(m_peer.atom("PEER_" + target));
    }
    const xcb_atom_t property = m_peer.atom("PEER_CONTENTS");
    xcb_change_property(m_peer.get(), XCB_PROP_MODE_REPLACE, window, property,
                        m_peer.atom("ATOM_PAIR"), 32, static_cast<std::uint32_t>(pairs.size()),
                        pairs.data());
    const auto answered = m_peer.ask(window, "MULTIPLE");
    if (!answered) return print("refused");
    const auto results = itemsIn(answered->data);
    for (std::size_t index = 0; index < targets.size(); ++index) {
        const xcb_atom_t result = results[2 * index + 1];
        std::optional<XPeer::Value> value;
        if (result != XCB_ATOM_NONE) value = m_peer.takeProperty(window, result);
        if (value && value->type == "INCR") value = m_peer.readPieces(window, result);
        print(QByteArray::fromStdString(targets[index]) + ": " + describe(value));
    }
    print("done");
}

void ClipboardReader::begin(const std::string& target) {
    m_transferWindow = m_peer.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    // Reading the property without taking it away keeps the first piece from being sent.
    const xcb_atom_t property = m_peer.atom("PEER_CONTENTS");
    xcb_convert_selection(m_peer.get(), m_transferWindow, m_peer.atom("CLIPBOARD"),
                          m_peer.atom(target), property, XCB_CURRENT_TIME);
    m_peer.waitFor([](const auto& event) { return event.response_type == XCB_SELECTION_NOTIFY; });
    print("begun");
}

void ClipboardReader::finish() {
    const xcb_atom_t property = m_peer.atom("PEER_CONTENTS");
    const auto announced = m_peer.takeProperty(m_transferWindow, property);
    if (!announced || announced->type != "INCR") return print(describe(announced));
    print(describe(m_peer.readPieces(m_transferWindow, property)));
}

void ClipboardReader::leave(const std::string& target) {
    const xcb_window_t window = m_peer.createWindow(XCB_EVENT_MASK_NO_EVENT);
    xcb_convert_selection(m_peer.get(), window, m_peer.atom("CLIPBOARD"), m_peer.atom(target),
                          m_peer.atom("PEER_CONTENTS"), XCB_CURRENT_TIME);
    xcb_destroy_window(m_peer.get(), window);
    xcb_flush(m_peer.get());
    print("left");
}

void ClipboardReader::drop() {
    (void)m_peer.takeProperty(m_transferWindow, m_peer.atom("PEER_CONTENTS"));
    xcb_destroy_window(m_peer.get(), m_transferWindow);
    xcb_flush(m_peer.get());
    print("dropped");
}

void ClipboardReader::withoutProperty(const std::string& target) {
    const xcb_window_t window = m_peer.createWindow(XCB_EVENT_MASK_PROPERTY_CHANGE);
    xcb_convert_selection(m_peer.get(), window, m_peer.atom("CLIPBOARD"), m_peer.atom(target),
                          XCB_ATOM_NONE, XCB_CURRENT_TIME);
    m_peer.waitFor([](const auto& event) { return event.response_type == XCB_SELECTION_NOTIFY; });
    print(describe(m_peer.takeProperty(window, m_peer.atom(target))));
}

void ClipboardReader::owner() {
    print(m_peer.owner("CLIPBOARD") == XCB_WINDOW_NONE ? "free" : "owned");
}

}  // namespace
}  // namespace quietlark

int main() {
    quietlark::ClipboardReader reader;
    for (std::string line; std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        words >> command;
        std::vector<std::string> arguments;
        for (std::string word; words >> word;)
            arguments.push_back(word);
        reader.obey(command, arguments);
    }
}
