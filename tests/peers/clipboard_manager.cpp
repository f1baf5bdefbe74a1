// clipboard_manager [hang]
//
// Keeps what other programs have copied when they end (SAVE_TARGETS): reads everything, then owns
// the clipboard. Prints "managing", and "saved TARGET..." each time. With "hang" it never answers.

#include <cstdlib>
#include <cstring>
#include <map>

#include "peers/x_peer.h"

namespace quietlark {
namespace {

class ClipboardManager {
public:
    explicit ClipboardManager(bool hangs) : m_hangs(hangs) {
        m_peer.own("CLIPBOARD_MANAGER");
        print("managing");
        m_peer.onOther = [this](const xcb_generic_event_t& event) {
            if (event.response_type == XCB_SELECTION_REQUEST)
                onRequest(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        };
    }

    void run() {
        m_peer.waitFor([](const xcb_generic_event_t&) { return false; });
    }

private:
    void onRequest(const xcb_selection_request_event_t& request) {
        if (m_hangs) return;
        const std::string target = m_peer.name(request.target);
        if (m_peer.name(request.selection) != "CLIPBOARD") return save(request);
        const auto kept = m_kept.find(target);
        m_peer.answer(request, kept == m_kept.end() ? std::nullopt
                                                    : std::optional<XPeer::Value>(kept->second));
    }

    void save(const xcb_selection_request_event_t& request) {
        const auto list = m_peer.read("TARGETS");
        QByteArray names;
        m_kept.clear();
        for (const auto atom : itemsIn(list ? list->data : QByteArray())) {
            const std::string target = m_peer.name(atom);
            if (target == "TARGETS" || target == "TIMESTAMP" || target == "MULTIPLE") continue;
            if (const auto value = m_peer.read(target)) {
                m_kept[target] = *value;
                names += ' ' + QByteArray::fromStdString(target);
            }
        }
        if (list) m_kept["TARGETS"] = *list;
        m_peer.own("CLIPBOARD");
        m_peer.answer(request, XPeer::Value{"NULL", 32, {}});
        print("saved" + names);
    }

    XPeer m_peer;
    bool m_hangs;
    std::map<std::string, XPeer::Value> m_kept;
};

}  // namespace
}  // namespace quietlark

int main(int argc, char** argv) {
    quietlark::ClipboardManager(argc > 1 && std::strcmp(argv[1], "hang") == 0).run();
}
