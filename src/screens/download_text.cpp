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
            return {Texts::tr("Starting download…"), std::nullopt};
        case Case::downloading:
            return {{}, percentOf(progress.value_or(0))};
        case Case::paused:
            return {Texts::tr("Paused"), std::nullopt, true};
        case Case::failed:
            return {Texts::tr("Download failed: ") + state.message, std::nullopt, true};
        case Case::ready:
            break;
    }
    return {};
}

int percentOf(double share) {
    return static_cast<int>(std::nearbyint(share * 100));
}

}  // namespace quietlark
