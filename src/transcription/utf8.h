#pragma once

#include <optional>

#include <QByteArrayView>
#include <QString>

namespace quietlark {

/// The text that `bytes` encode; absent when they are not valid UTF-8 from the first to the last.
/// A leading byte-order mark is dropped.
[[nodiscard]] std::optional<QString> decodeUtf8(QByteArrayView bytes);

}  // namespace quietlark
