#pragma once

#include <QString>

class QDBusMessage;

namespace quietlark {

/// What the user is told when the service manager answers a request about `unit` with `error`.
[[nodiscard]] QString sentenceForError(const QString& unit, const QDBusMessage& error);

/// What the user is told when a job for `unit` has ended with `result`, which is one of the words
/// of systemd's JobRemoved signal, and not "done".
[[nodiscard]] QString sentenceForJobResult(const QString& unit, const QString& result);

/// What the user is told when the service manager has not finished a job for `unit` in time.
[[nodiscard]] QString sentenceForUnfinishedJob(const QString& unit);

/// What the user is told when the service manager goes away in the middle of a request.
[[nodiscard]] QString sentenceForLostManager();

}  // namespace quietlark
