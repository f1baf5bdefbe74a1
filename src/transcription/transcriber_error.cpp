#include "transcription/transcriber_error.h"

#include <QCoreApplication>

namespace quietlark {

namespace {

struct Describe {
    Q_DECLARE_TR_FUNCTIONS(TranscriberError)

public:
    QString operator()(const TranscriberError::RequestFailed& failure) const {
        return tr("The transcription server answered with an error (HTTP %1).").arg(failure.status);
    }
    QString operator()(const TranscriberError::EmptyURL&) const {
        return tr("No address of a transcription server is set.");
    }
    QString operator()(const TranscriberError::Unresolvable&) const {
        return tr("No transcription server was found at that address.");
    }
    QString operator()(const TranscriberError::InvalidResponse&) const {
        return tr("What answered at that address is not a web server.");
    }
    QString operator()(const TransportError& error) const { return error.description; }
};

}  // namespace

QString TranscriberError::localizedDescription() const {
    return std::visit(Describe{}, reason);
}

}  // namespace quietlark
