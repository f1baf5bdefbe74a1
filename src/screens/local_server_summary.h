#pragma once

#include <optional>

#include <QString>

#include "local_server/model_downloader.h"
#include "platform/registered_service.h"

namespace quietlark {

/// How the speech server of this computer stands, at one moment.
struct LocalServerStand {
    bool modelIsInstalled = false;
    ModelDownloader::State download = {};
    std::optional<double> progress = {};  ///< of the download, from 0 to 1
    ServiceStatus status = ServiceStatus::notRegistered;
    bool isPublished = false;               ///< it has said where it can be reached
    std::optional<QString> displayed = {};  ///< its address as people should see it

    bool operator==(const LocalServerStand&) const = default;
};

/// That in one line.
[[nodiscard]] QString localTitle(const LocalServerStand& stand);

/// Where it is.
[[nodiscard]] QString localDetails(const LocalServerStand& stand);

/// Its model is on the way, or has not come.
[[nodiscard]] bool needsDownload(const LocalServerStand& stand);

/// Only the user can let it run.
[[nodiscard]] bool needsApproval(const LocalServerStand& stand);

}  // namespace quietlark
