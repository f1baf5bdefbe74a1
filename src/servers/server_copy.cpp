#include "servers/server_copy.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(ServerCopy)
};

bool isLocal(const ServerRecommendation& recommendation) {
    return std::holds_alternative<RecommendLocal>(recommendation);
}

QString localComparison(const ServerRecommendation& recommendation, std::size_t remoteCount) {
    if (std::holds_alternative<RecommendRemote>(recommendation))
        return Sentences::tr("Slower than a server on your network");
    if (isLocal(recommendation) && remoteCount > 0)
        return Sentences::tr("Faster than anything on your network");
    return Sentences::tr("Transcribe on this Mac");
}

}  // namespace

QString ServerCopy::localCard(const ServerRecommendation& recommendation, std::size_t remoteCount,
                              bool modelIsInstalled) {
    const QString end =
        modelIsInstalled ? Sentences::tr("%1.") : Sentences::tr("%1. 1.6 GB model download.");
    return end.arg(localComparison(recommendation, remoteCount));
}

QString ServerCopy::networkCard(const ServerRecommendation& recommendation, std::size_t remoteCount,
                                bool initialScanIsDone) {
    if (remoteCount == 0) {
        return initialScanIsDone ? Sentences::tr("None found. Enter an address manually.")
                                 : Sentences::tr("Looking…");
    }
    if (remoteCount == 1) {
        return isLocal(recommendation) ? Sentences::tr("1 server, slower than this Mac.")
                                       : Sentences::tr("1 server found.");
    }
    const int count = static_cast<int>(remoteCount);
    return isLocal(recommendation)
               ? Sentences::tr("%n servers, all slower than this Mac.", nullptr, count)
               : Sentences::tr("%n servers found.", nullptr, count);
}

QString ServerCopy::hint(SpeedHint hint) {
    return hint == SpeedHint::faster ? Sentences::tr("Faster than this Mac")
                                     : Sentences::tr("Slower than this Mac");
}

}  // namespace quietlark
