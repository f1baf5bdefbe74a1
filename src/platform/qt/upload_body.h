#pragma once

#include <functional>

#include <QByteArray>
#include <QIODevice>

namespace quietlark {

/// A request's body, which decides whether it may be sent again.
///
/// QNetworkAccessManager sends a request anew, up to three times, when its connection ends without
/// an answer, and asks the body to start over. A server that crashes on a recording would be sent
/// it four times; a body that refuses ends that after the first.
class UploadBody final : public QIODevice {
public:
    /// `onConnected` runs whenever the body begins to be sent: there is a connection then.
    UploadBody(QByteArray body, std::function<void()> onConnected);

    /// Lets the body be read from its beginning once more, or no more.
    void allowRestart() { m_restartIsAllowed = true; }
    void forbidRestart() { m_restartIsAllowed = false; }

    [[nodiscard]] qint64 size() const override { return m_body.size(); }

    /// Back to the beginning, if that is allowed.
    bool reset() override;

protected:
    qint64 readData(char* data, qint64 maxBytes) override;
    qint64 writeData(const char* data, qint64 maxBytes) override;

private:
    QByteArray m_body;
    std::function<void()> m_onConnected;
    bool m_restartIsAllowed = false;
};

}  // namespace quietlark
