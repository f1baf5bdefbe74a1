#pragma once

#include <optional>

#include <QString>

#include "local_server/model_downloader.h"

namespace quietlark {

/// How the model's download goes, for the user.
struct DownloadText {
    QString text{};                ///< empty while there is a bar to show, and at the end
    bool showsBar = false;         ///< it is under way
    std::optional<int> percent{};  ///< how far the bar has come; absent while nobody knows
    bool offersRetry = false;      ///< it goes on only when the user says so

    /// `progress` is from 0 to 1.
    [[nodiscard]] static DownloadText of(const ModelDownloader::State& state,
                                         std::optional<double> progress);

    bool operator==(const DownloadText&) const = default;
};

/// From 0 to 100, of a share from 0 to 1; a half goes to the even neighbour, as printf does it.
[[nodiscard]] int percentOf(double share);

}  // namespace quietlark
