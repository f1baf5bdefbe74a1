#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include <QByteArray>
#include <QString>

#include "transcription/resolved_server.h"

namespace quietlark {

/// The form of an upload and of its answer: pure functions, any thread.
namespace Transcriber {

/// Name and value of each field, in the order they are sent.
using FormFields = std::vector<std::pair<QString, QString>>;

/// The text fields of an upload. Without a model an OpenAI-compatible server is told "whisper-1";
/// an empty language is left out.
[[nodiscard]] FormFields formFields(ServerFlavor flavor, const std::optional<QString>& model,
                                    const QString& language);

/// A multipart/form-data body (RFC 7578): the fields, then the recording as "audio.wav". Names and
/// values are not escaped.
[[nodiscard]] QByteArray multipartBody(const QByteArray& boundary,
                                       std::span<const std::uint8_t> wav, const FormFields& fields);

/// The string member "text" of a JSON object, exactly as it is; absent for any other body.
[[nodiscard]] std::optional<QString> parseTextField(const QByteArray& body);

/// Removes non-speech markers such as [BLANK_AUDIO], folds every run of white space into one space
/// and trims both ends.
[[nodiscard]] QString clean(const QString& text);

/// Removes what could act on the program that text is pasted into, or disguise the text: control
/// characters (C0, DEL, C1), and the bidirectional embeddings, overrides and isolates (U+202A to
/// U+202E, U+2066 to U+2069). The marks U+200E, U+200F and U+061C stay: they are part of properly
/// written right-to-left text and reorder nothing but the punctuation next to them.
[[nodiscard]] QString withoutControlCharacters(const QString& text);

/// The same as one line, for names that somebody else chose: what ends a line or a column separates
/// words there, as a blank does. Marks of no width (U+00AD, U+061C, U+200B, U+200E, U+200F, U+2060
/// to U+2064, U+FEFF) are left out, as two names could differ in nothing else; the joiners U+200C
/// and U+200D stay, as they shape the letters beside them. Empty where nothing would show.
[[nodiscard]] QString plainLine(const QString& text);

}  // namespace Transcriber

}  // namespace quietlark
