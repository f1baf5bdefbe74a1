#pragma once

#include <mutex>
#include <string>

#include "platform/log.h"
#include "server/endpoint_file_writer.h"
#include "server/service_announcer.h"

namespace quietlark {

/// Lets others find the server while it can transcribe, and only then: the application by the
/// endpoint file, the network by an announcement, if it is to know. Any thread.
class ServerPresence {
public:
    struct Identity {
        std::string local;    ///< "host:port" for clients on this computer
        std::string display;  ///< the address as a person would write it
        std::string name;     ///< for the network
        int port = 0;
        std::string model;
        std::string cpu;  ///< empty if unknown
    };

    /// `announcer` may be null, when the network is not to know.
    ServerPresence(EndpointFileWriter& endpointFile, ServiceAnnouncer* announcer, Log& log);

    /// The first appearance. The error is a sentence for the user.
    [[nodiscard]] tl::expected<void, std::string> appear(const Identity& identity);

    /// Whether the server can transcribe; at first it can.
    void setReady(bool isReady);

    /// Seconds of sound per second. The file keeps up with changes by more than a hundredth, the
    /// network hears of those by more than a tenth.
    void setSpeed(double rtf);

    /// Puts the file back when somebody has deleted it, as cleaners of temporary files do, or when
    /// the server that was there first is gone. To be asked now and then.
    void refresh();

    /// For good.
    void disappear();

private:
    enum class Stage { Coming, Present, Gone };

    [[nodiscard]] tl::expected<void, std::string> publish();
    void announce();
    void hide();

    EndpointFileWriter& m_endpointFile;
    ServiceAnnouncer* const m_announcer;
    Log& m_log;
    std::mutex m_mutex;
    Stage m_stage = Stage::Coming;
    Identity m_identity;
    bool m_isReady = true;
    bool m_isLeftOut = false;  ///< of the file, in favour of another server
    double m_rtf = 0;
    double m_publishedRtf = 0;
    double m_announcedRtf = 0;
};

}  // namespace quietlark
