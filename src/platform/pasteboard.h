#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <QByteArray>
#include <QString>
#include <tl/expected.hpp>

#include "platform/cancellable.h"
#include "platform/unavailable.h"

namespace quietlark {

/// One representation of one pasteboard item.
struct CapturedType {
    std::string type;  ///< the platform's own name of the representation
    QByteArray data;   ///< byte for byte

    bool operator==(const CapturedType&) const = default;
};

/// The representations of one item, in the pasteboard's own order.
using PasteboardItem = std::vector<CapturedType>;

/// The items of a pasteboard; empty when it held nothing.
using PasteboardSnapshot = std::vector<PasteboardItem>;

/// The system-wide clipboard. Main thread; no call waits for another program.
class Pasteboard {
public:
    /// Absent when the pasteboard could not be listed.
    using SnapshotHandler = std::function<void(std::optional<PasteboardSnapshot>)>;

    /// Whether the text now is where whoever gets the keys will look for it.
    using SetHandler = std::function<void(const tl::expected<void, Unavailable>&)>;

    virtual ~Pasteboard() = default;

    /// Reads every representation of every item. One that cannot be read in time is left out, and
    /// so is an item left with none. While a text of ours still awaits its restore(), this is what
    /// it covers: the contents from before it. `onSnapshot` runs once, on the main thread, never
    /// before the call returns.
    [[nodiscard]] virtual Cancellable snapshot(SnapshotHandler onSnapshot) = 0;

    /// Replaces the contents by plain text, marked as nothing for a clipboard history. `onSet` runs
    /// once, on the main thread, never before the call returns. The text is set also when nobody
    /// waits for that any more.
    [[nodiscard]] virtual Cancellable setString(const QString& text, SetHandler onSet) = 0;

    /// Puts a snapshot back in place of setString()'s text; an empty one leaves the pasteboard
    /// empty. What somebody else has copied since setString() stays.
    virtual void restore(PasteboardSnapshot snapshot) = 0;

    /// Gives up what setString()'s text covers: the text stays as if the user had copied it, no
    /// longer marked, and restore() does nothing any more. Nor does this when no text awaits it.
    virtual void keepString() = 0;
};

}  // namespace quietlark
