#pragma once

#include <optional>
#include <variant>

#include <QByteArray>
#include <QString>

#include "local_server/model_source.h"
#include "platform/http_stream.h"

namespace quietlark {

/// The body is the whole model, from its beginning.
struct WholeModel {
    std::optional<qint64> totalBytes;  ///< absent when the server does not say
    QByteArray validator;              ///< for ResumeData; empty when it cannot be continued
};

/// The body is what is missing.
struct RestOfModel {
    qint64 totalBytes = 0;
};

/// The server has something else than what was begun: ask anew, for all of it.
struct OtherModel {};

/// Nothing to download here.
struct RefusedModel {
    QString reason;  ///< a sentence for the user
};

using DownloadAnswer = std::variant<WholeModel, RestOfModel, OtherModel, RefusedModel>;

/// What was asked of the server beyond the whole model, to continue a download.
struct RangeAsked {
    qint64 firstByte = 0;
    QByteArray validator;
    std::optional<qint64> totalBytes;  ///< as far as an earlier answer said
};

/// Understands the head of an answer (RFC 9110, sections 13 and 14), so that bytes of two different
/// files are never joined. No side effects.
[[nodiscard]] DownloadAnswer readAnswer(const HttpHead& head, const ModelSource& source,
                                        const std::optional<RangeAsked>& asked);

}  // namespace quietlark
