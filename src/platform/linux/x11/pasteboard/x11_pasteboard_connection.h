#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include <QByteArray>
#include <xcb/xcb.h>

namespace quietlark {

/// The value of a window's property. Items of 16 and 32 bits are in this machine's byte order.
struct X11Property {
    xcb_atom_t type = XCB_ATOM_NONE;
    std::uint8_t format = 8;  ///< bits of an item: 8, 16 or 32
    QByteArray data;
    bool isWhole = true;  ///< false when it was too long; it then stands where it stood
};

/// The pasteboard's own connection to the X server. Its calls wait for the server, never for
/// another program. One thread. When the server cannot be reached, or goes away, nothing is
/// answered any more: no owner, no atom, no property.
class X11PasteboardConnection {
public:
    /// `display` such as ":0"; empty for the one that the environment names.
    explicit X11PasteboardConnection(const QByteArray& display);
    ~X11PasteboardConnection();
    X11PasteboardConnection(const X11PasteboardConnection&) = delete;
    X11PasteboardConnection& operator=(const X11PasteboardConnection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return m_connection; }
    [[nodiscard]] bool isOpen() const;

    /// -1 when there is none.
    [[nodiscard]] int fileDescriptor() const { return m_fileDescriptor; }

    /// None when the server refused the name.
    [[nodiscard]] xcb_atom_t atom(const std::string& name);

    /// Empty for what is no atom.
    [[nodiscard]] std::string name(xcb_atom_t atom);

    /// Asks for many names at once, so that name() has them without waiting.
    void learnNames(std::span<const xcb_atom_t> atoms);

    /// A window that is never shown.
    [[nodiscard]] xcb_window_t createWindow(std::uint32_t eventMask);

    /// Takes a property off a window, if it is not longer than `limit` bytes.
    [[nodiscard]] std::optional<X11Property> takeProperty(xcb_window_t window, xcb_atom_t property,
                                                          std::size_t limit);

    /// The window that owns a selection, or None.
    [[nodiscard]] xcb_window_t selectionOwner(xcb_atom_t selection);

    /// Stands for the client that made a window: the same for all of its windows.
    [[nodiscard]] std::uint32_t clientOf(xcb_window_t window) const;

    /// The client whose window gets the keys; absent when there is none.
    [[nodiscard]] std::optional<std::uint32_t> focusedClient();

    /// Whether the program that gets the keys pastes the PRIMARY selection.
    [[nodiscard]] bool focusPastesPrimary();

    /// Returns when the server has done all that was asked of it.
    void synchronize();

    /// The most bytes that one request can put into a property, without the extension for big
    /// requests, which the reader of the property may not have. Divisible by four.
    [[nodiscard]] std::size_t largestChunk() const { return m_largestChunk; }

private:
    xcb_connection_t* m_connection;
    int m_fileDescriptor = -1;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    std::uint32_t m_resourceIdMask = 0;
    std::size_t m_largestChunk = 0;
    std::map<std::string, xcb_atom_t> m_atoms;
    std::map<xcb_atom_t, std::string> m_names;
};

}  // namespace quietlark
