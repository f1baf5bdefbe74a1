#include "screens/download_text.h"

#include <cmath>

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(DownloadText)
};

}  // namespace

DownloadText DownloadText::of(const ModelDownloader::State& state, std::optional<double> progress) {
    using Case = ModelDownloader::State::Case;
    switch (state.kind) {
        case Case::idle:
            return {.text = Texts::tr("Starting download…")};
        case Case::downloading:
            if (!progress) return {.showsBar = true};
            return {.showsBar = true, .percent = percentOf(*progress)};
        case Case::paused:
            return {.text = Texts::tr("Paused"), .offersRetry = true};
        case Case::failed:
            return {.text = Texts::tr("Download failed: ") + state.message, .offersRetry = true};
        case Case::ready:
            break;
    }
    return {};
}

int percentOf(double share) {
    return static_cast<int>(std::nearbyint(share * 100));
}

}  // namespace quietlark
