#include "platform/linux/x11/pasteboard/x11_pasteboard_contents.h"

#include <algorithm>
#include <string>
#include <utility>

#include "platform/linux/x11/pasteboard/x11_representation.h"

namespace quietlark {

namespace {

bool isWellFormed(const X11Representation& representation) {
    switch (representation.format) {
        case 8:
            return true;
        case 16:
            return representation.data.size() % 2 == 0;
        case 32:
            return representation.data.size() % 4 == 0;
        default:
            return false;
    }
}

}  // namespace

PasteboardSnapshot dictatedText(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    const QByteArray latin1 = text.toLatin1();
    // TEXT is whichever encoding suits the text; its type tells (ICCCM section 2.6.2).
    const bool isLatin1 = QString::fromLatin1(latin1) == text;
    const X11Representation anyText{"TEXT", isLatin1 ? "STRING" : "UTF8_STRING", 8,
                                    isLatin1 ? latin1 : utf8};
    return {{{"UTF8_STRING", utf8},
             {"text/plain;charset=utf-8", utf8},
             {"STRING", latin1},
             anyText.captured(),
             {"text/plain", utf8},
             {std::string(secretHintTarget), QByteArrayLiteral("secret")}}};
}

X11PasteboardContents::X11PasteboardContents(PasteboardSnapshot snapshot,
                                             X11PasteboardConnection& connection)
    : m_snapshot(std::move(snapshot)) {
    for (const auto& item : m_snapshot) {
        for (const auto& captured : item) {
            const auto representation = X11Representation::from(captured);
            const Entry entry{connection.atom(representation.target),
                              connection.atom(representation.type), representation.format,
                              representation.data};
            const bool hasNames = entry.target != XCB_ATOM_NONE && entry.type != XCB_ATOM_NONE;
            if (hasNames && isWellFormed(representation) && find(entry.target) == nullptr)
                m_entries.push_back(entry);
        }
    }
}

const X11PasteboardContents::Entry* X11PasteboardContents::find(xcb_atom_t target) const {
    const auto found = std::ranges::find(m_entries, target, &Entry::target);
    return found == m_entries.end() ? nullptr : &*found;
}

}  // namespace quietlark
