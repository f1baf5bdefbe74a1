#include "screens/local_server_summary.h"

#include <QCoreApplication>

#include "screens/download_text.h"

namespace quietlark {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(LocalServerSummary)
};

QString downloadTitle(const LocalServerStand& stand) {
    using Case = ModelDownloader::State::Case;
    switch (stand.download.kind) {
        case Case::idle:
        case Case::ready:
            return Texts::tr("Preparing model…");
        case Case::downloading:
            if (!stand.progress) return Texts::tr("Downloading model…");
            return Texts::tr("Downloading model: %1%").arg(percentOf(*stand.progress));
        case Case::paused:
            return Texts::tr("Model download paused");
        case Case::failed:
            return Texts::tr("Model download failed");
    }
    return {};
}

}  // namespace

QString localTitle(const LocalServerStand& stand) {
    if (!stand.modelIsInstalled) return downloadTitle(stand);
    switch (stand.status) {
        case ServiceStatus::enabled:
            return stand.isPublished ? Texts::tr("Ready to transcribe")
                                     : Texts::tr("Starting server…");
        case ServiceStatus::requiresApproval:
            return Texts::tr("Awaiting approval");
        case ServiceStatus::notRegistered:
        case ServiceStatus::notFound:
            return Texts::tr("Starting server…");
    }
    return {};
}

QString localDetails(const LocalServerStand& stand) {
    const bool isUp = stand.modelIsInstalled && stand.status == ServiceStatus::enabled;
    if (!isUp || !stand.displayed) return Texts::tr("On this Mac");
    return Texts::tr("On this Mac (%1)").arg(*stand.displayed);
}

bool needsDownload(const LocalServerStand& stand) {
    using Case = ModelDownloader::State::Case;
    const Case kind = stand.download.kind;
    return !stand.modelIsInstalled && kind != Case::idle && kind != Case::ready;
}

bool needsApproval(const LocalServerStand& stand) {
    return stand.status == ServiceStatus::requiresApproval;
}

}  // namespace quietlark
