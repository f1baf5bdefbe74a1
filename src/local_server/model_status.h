#pragma once

#include <optional>

#include <QtGlobal>

#include "local_server/model_files.h"

namespace quietlark {

/// What is there of the model, as the files say.
struct ModelStatus {
    enum class Case { missing, incomplete, installed };

    Case kind = Case::missing;
    qint64 bytes = 0;                       ///< of the model, or of what was received
    std::optional<qint64> totalBytes = {};  ///< of the whole model, if it is known

    bool operator==(const ModelStatus&) const = default;

    /// Changes nothing; also while a download is under way. Any thread.
    [[nodiscard]] static ModelStatus read(const ModelFiles& files);
};

}  // namespace quietlark
