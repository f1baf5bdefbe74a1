#pragma once

#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include <QByteArray>

namespace quietlark {

/// Stands between one client and a real X server, to make the server poorer than it is or to have
/// something happen at a chosen moment.
class XProxy {
public:
    /// A request of the client, as it is about to be passed on; may be changed, not in length. Runs
    /// on the proxy's own thread.
    using RequestHandler = std::function<void(std::vector<std::uint8_t>&)>;

    XProxy(const QByteArray& serverDisplay, RequestHandler onRequest);
    ~XProxy();

    /// What the client is to connect to.
    [[nodiscard]] QByteArray display() const { return ":" + m_number; }

    /// A handler that has the server say that it does not know the extension.
    static RequestHandler withoutExtension(const QByteArray& name);

private:
    void serve();
    bool passOnRequests(int client, int server);

    QByteArray m_serverNumber;
    QByteArray m_number;
    RequestHandler m_onRequest;
    std::vector<std::uint8_t> m_pending;
    bool m_isSetUp = false;
    int m_listener = -1;
    int m_wakeUp = -1;
    std::thread m_thread;
};

}  // namespace quietlark
