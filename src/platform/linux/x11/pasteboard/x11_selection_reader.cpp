#include "platform/linux/x11/pasteboard/x11_selection_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "platform/linux/x11/pasteboard/x11_representation.h"

namespace quietlark {

namespace {

// More than any program offers; what a malicious one lists beyond is not asked for.
constexpr std::size_t mostTargets = 1024;

constexpr std::array<std::string_view, 6> excludedTargets{
    "TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "application/x-qt-image"};

// An owner that is slow should not go on with questions that nobody waits for any more, and most
// offer fewer targets than this.
constexpr std::ptrdiff_t questionsAtATime = 8;

// Their values name things that the owner will free.
constexpr std::array<std::string_view, 5> resourceTypes{"PIXMAP", "BITMAP", "DRAWABLE", "COLORMAP",
                                                        "WINDOW"};

enum class Urgency { text, image, other };

// Owners answer one question after the other. What is wanted most, and is cheapest to make, comes
// first.
Urgency urgencyOf(const std::string& target) {
    constexpr std::array<std::string_view, 4> texts{"UTF8_STRING", "STRING", "TEXT",
                                                    "COMPOUND_TEXT"};
    if (target.starts_with("text/") || std::ranges::find(texts, target) != texts.end())
        return Urgency::text;
    return target == "image/png" ? Urgency::image : Urgency::other;
}

bool isPlainData(const std::string& target) {
    return !target.empty() && !target.starts_with("INSERT_") &&
           std::ranges::find(excludedTargets, target) == excludedTargets.end();
}

bool isPending(const std::unique_ptr<X11Conversion>& conversion) {
    return conversion && conversion->isPending();
}

}  // namespace

X11SelectionReader::X11SelectionReader(X11PasteboardConnection& connection,
                                       X11RequestorWindows& windows, xcb_atom_t selection,
                                       std::size_t byteLimit)
    : m_connection(connection), m_windows(windows), m_selection(selection), m_byteLimit(byteLimit) {
    start();
}

void X11SelectionReader::start() {
    m_budget = m_byteLimit;
    m_conversions.clear();
    m_unasked.clear();
    m_isListed = false;
    m_list = std::make_unique<X11Conversion>(m_connection, m_windows, m_selection,
                                             m_connection.atom("TARGETS"));
}

void X11SelectionReader::onSelectionNotify(const xcb_selection_notify_event_t& event) {
    if (X11Conversion* conversion = conversionFor(event.requestor)) {
        conversion->onAnswer(event, m_budget);
        onProgress();
    }
}

void X11SelectionReader::onPropertyNotify(const xcb_property_notify_event_t& event) {
    if (event.state != XCB_PROPERTY_NEW_VALUE) return;
    if (X11Conversion* conversion = conversionFor(event.window)) {
        conversion->onNewValue(event, m_budget);
        onProgress();
    }
}

void X11SelectionReader::onOwnerChanged(xcb_window_t owner) {
    if (m_isDone) return;
    if (owner != XCB_WINDOW_NONE) return start();
    // Nobody will deliver what is still missing.
    m_list.reset();
    m_isListed = true;
    m_isDone = true;
}

void X11SelectionReader::onProgress() {
    if (m_list) {
        if (m_list->isPending()) return;
        onListed();
    }
    askForMore();
    m_isDone = std::ranges::none_of(m_conversions, isPending);
}

void X11SelectionReader::onListed() {
    m_isListed = m_list->state() == X11Conversion::State::delivered;
    m_targets = listedTargets();
    m_list.reset();

    std::vector<std::pair<Urgency, std::size_t>> order;
    for (std::size_t index = 0; index < m_targets.size(); ++index)
        order.emplace_back(urgencyOf(m_connection.name(m_targets[index])), index);
    std::ranges::sort(order);
    for (const auto& [urgency, index] : order)
        m_unasked.push_back(index);
    m_conversions.resize(m_targets.size());
}

void X11SelectionReader::askForMore() {
    auto questions = std::ranges::count_if(m_conversions, isPending);
    for (; questions < questionsAtATime && !m_unasked.empty(); ++questions) {
        const std::size_t index = m_unasked.front();
        m_unasked.pop_front();
        m_conversions[index] =
            std::make_unique<X11Conversion>(m_connection, m_windows, m_selection, m_targets[index]);
    }
}

std::vector<xcb_atom_t> X11SelectionReader::listedTargets() {
    // An owner must list its targets; one that is too simple for that may still have a text.
    if (!m_isListed) return {m_connection.atom("UTF8_STRING"), XCB_ATOM_STRING};

    const QByteArray& list = m_list->value().data;
    std::vector<xcb_atom_t> atoms(
        std::min(static_cast<std::size_t>(list.size()) / sizeof(xcb_atom_t), mostTargets));
    std::memcpy(atoms.data(), list.constData(), atoms.size() * sizeof(xcb_atom_t));
    m_connection.learnNames(atoms);

    std::set<xcb_atom_t> seen;
    std::erase_if(atoms, [&](xcb_atom_t atom) {
        return !seen.insert(atom).second || !isPlainData(m_connection.name(atom));
    });
    return atoms;
}

std::optional<PasteboardSnapshot> X11SelectionReader::result() {
    PasteboardItem item;
    for (const auto& conversion : m_conversions) {
        if (!conversion || conversion->state() != X11Conversion::State::delivered) continue;
        const X11Property& value = conversion->value();
        const X11Representation representation{m_connection.name(conversion->target()),
                                               m_connection.name(value.type), value.format,
                                               value.data};
        if (std::ranges::find(resourceTypes, representation.type) == resourceTypes.end())
            item.push_back(representation.captured());
    }
    if (!item.empty()) return PasteboardSnapshot{std::move(item)};
    return m_isListed ? std::optional<PasteboardSnapshot>(PasteboardSnapshot()) : std::nullopt;
}

X11Conversion* X11SelectionReader::conversionFor(xcb_window_t requestor) {
    if (m_list && m_list->requestor() == requestor) return m_list.get();
    const auto found = std::ranges::find_if(m_conversions, [&](const auto& conversion) {
        return conversion && conversion->requestor() == requestor;
    });
    return found == m_conversions.end() ? nullptr : found->get();
}

}  // namespace quietlark
