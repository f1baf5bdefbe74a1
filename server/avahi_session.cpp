#include "server/avahi_session.h"

#include <array>

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>

namespace quietlark {
namespace {

// From Avahi's interface descriptions (avahi-common/defs.h).
constexpr const char* avahi = "org.freedesktop.Avahi";
constexpr const char* serverInterface = "org.freedesktop.Avahi.Server";
constexpr const char* groupInterface = "org.freedesktop.Avahi.EntryGroup";
constexpr const char* collisionError = "org.freedesktop.Avahi.CollisionError";
constexpr int serverRunning = 2;
constexpr int groupCollision = 3;
constexpr int groupFailure = 4;
/// How many computers of one name are on one network, at the most.
constexpr int mostNames = 20;
constexpr std::int32_t anyInterface = -1;
constexpr std::int32_t anyProtocol = -1;

constexpr const char* serviceType = "_whisper._tcp";
constexpr std::uint64_t callLimitMicroseconds = 2'000'000;

struct MessageDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Message = std::unique_ptr<sd_bus_message, MessageDeleter>;

class BusError {
public:
    BusError() = default;
    ~BusError() { sd_bus_error_free(&m_error); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    operator sd_bus_error*() { return &m_error; }
    [[nodiscard]] bool is(const char* name) const {
        return sd_bus_error_has_name(&m_error, name) != 0;
    }

private:
    sd_bus_error m_error = SD_BUS_ERROR_NULL;
};

Message newCall(sd_bus* bus, const std::string& path, const char* interface, const char* method) {
    sd_bus_message* call = nullptr;
    sd_bus_message_new_method_call(bus, &call, avahi, path.c_str(), interface, method);
    return Message(call);
}

bool send(sd_bus* bus, const Message& call, BusError& error) {
    return call && sd_bus_call(bus, call.get(), callLimitMicroseconds, error, nullptr) >= 0;
}

/// What every description of a service begins with.
bool appendService(sd_bus_message* call, const char* name) {
    constexpr std::uint32_t noFlags = 0;
    return sd_bus_message_append(call, "iiuss", anyInterface, anyProtocol, noFlags, name,
                                 serviceType) >= 0;
}

bool appendTxt(sd_bus_message* call, const ServiceAnnouncement& announcement) {
    bool isAppended = sd_bus_message_open_container(call, 'a', "ay") >= 0;
    for (const auto& [key, value] : announcement.txt) {
        const std::string entry = key + "=" + value;
        isAppended =
            isAppended && sd_bus_message_append_array(call, 'y', entry.data(), entry.size()) >= 0;
    }
    return isAppended && sd_bus_message_close_container(call) >= 0;
}

bool differInTxtAlone(const ServiceAnnouncement& one, const ServiceAnnouncement& other) {
    return one.name == other.name && one.port == other.port;
}

}  // namespace

void AvahiSession::Closer::operator()(sd_bus* bus) const {
    // Avahi takes back what a client announced that leaves.
    sd_bus_flush_close_unref(bus);
}

std::unique_ptr<AvahiSession> AvahiSession::open(Log& log) {
    sd_bus* bus = nullptr;
    if (sd_bus_open_system(&bus) < 0) return nullptr;
    std::unique_ptr<AvahiSession> session(new AvahiSession(bus, log));
    return session->subscribe() ? std::move(session) : nullptr;
}

AvahiSession::AvahiSession(sd_bus* bus, Log& log) : m_bus(bus), m_log(log) {
    sd_bus_set_method_call_timeout(bus, callLimitMicroseconds);
}

AvahiSession::~AvahiSession() = default;

bool AvahiSession::subscribe() {
    const auto handler = [](sd_bus_message* signal, void* self, sd_bus_error*) {
        static_cast<AvahiSession*>(self)->heard(signal);
        return 0;
    };
    const bool hearsOwner =
        sd_bus_add_match(m_bus.get(), nullptr,
                         "type='signal',sender='org.freedesktop.DBus',"
                         "member='NameOwnerChanged',arg0='org.freedesktop.Avahi'",
                         handler, this) >= 0;
    const bool hearsStates = sd_bus_add_match(m_bus.get(), nullptr,
                                              "type='signal',sender='org.freedesktop.Avahi',"
                                              "member='StateChanged'",
                                              handler, this) >= 0;
    return hearsOwner && hearsStates;
}

void AvahiSession::heard(sd_bus_message* signal) {
    // Another daemon, or one that has another name on the network, knows nothing of the old group.
    if (sd_bus_message_is_signal(signal, nullptr, "NameOwnerChanged") > 0) return forgetGroup();
    std::int32_t state = 0;
    if (sd_bus_message_read(signal, "i", &state) < 0) return;
    if (sd_bus_message_is_signal(signal, serverInterface, "StateChanged") > 0) {
        if (state != serverRunning) freeGroup();
        return;
    }
    const char* const path = sd_bus_message_get_path(signal);
    if (m_group.empty() || !path || m_group != path) return;
    if (state != groupCollision && state != groupFailure) return;
    freeGroup();
    if (state == groupCollision) takeAnotherName();
}

bool AvahiSession::update(const std::optional<ServiceAnnouncement>& wanted) {
    if (wanted == m_published) return true;
    const bool isAnnounced =
        wanted && m_published && differInTxtAlone(*wanted, *m_published) && updateTxt(*wanted);
    if (!isAnnounced) freeGroup();
    const bool isDone = !wanted || isAnnounced || (isServerRunning() && publish(*wanted));
    if (isDone) m_published = wanted;
    if (!isDone && !m_hasFailed)
        m_log.write(LogLevel::Info, "waiting for Avahi to announce " + wanted->name);
    m_hasFailed = !isDone;
    return isDone;
}

bool AvahiSession::wait(int wakeEvent, std::optional<std::chrono::milliseconds> limit) {
    const int processed = sd_bus_process(m_bus.get(), nullptr);
    if (processed != 0) return processed > 0;
    std::array<pollfd, 2> descriptors{
        {{sd_bus_get_fd(m_bus.get()), static_cast<short>(sd_bus_get_events(m_bus.get())), 0},
         {wakeEvent, POLLIN, 0}}};
    poll(descriptors.data(), descriptors.size(), limit ? static_cast<int>(limit->count()) : -1);
    eventfd_t ignored = 0;
    if (descriptors[1].revents != 0) eventfd_read(wakeEvent, &ignored);
    return true;
}

bool AvahiSession::isServerRunning() const {
    BusError error;
    sd_bus_message* answer = nullptr;
    sd_bus_call_method(m_bus.get(), avahi, "/", serverInterface, "GetState", error, &answer, "");
    const Message owner(answer);
    std::int32_t state = 0;
    return answer && sd_bus_message_read(answer, "i", &state) >= 0 && state == serverRunning;
}

bool AvahiSession::publish(const ServiceAnnouncement& wanted) {
    if (m_requestedName != wanted.name) m_requestedName = m_name = wanted.name;
    if (!newGroup()) return false;
    Added added = addService(wanted);
    for (int tries = 1; added == Added::NameTaken && tries < mostNames; ++tries) {
        takeAnotherName();
        added = addService(wanted);
    }
    if (added == Added::Yes && callGroup("Commit")) {
        m_log.write(LogLevel::Info, "announced as " + m_name);
        return true;
    }
    freeGroup();
    return false;
}

bool AvahiSession::newGroup() {
    BusError error;
    sd_bus_message* answer = nullptr;
    sd_bus_call_method(m_bus.get(), avahi, "/", serverInterface, "EntryGroupNew", error, &answer,
                       "");
    const Message owner(answer);
    const char* path = nullptr;
    if (!answer || sd_bus_message_read(answer, "o", &path) < 0) return false;
    m_group = path;
    return true;
}

AvahiSession::Added AvahiSession::addService(const ServiceAnnouncement& wanted) const {
    const Message call = newCall(m_bus.get(), m_group, groupInterface, "AddService");
    constexpr const char* usual = "";
    if (!call || !appendService(call.get(), m_name.c_str()) ||
        sd_bus_message_append(call.get(), "ssq", usual, usual, wanted.port) < 0 ||
        !appendTxt(call.get(), wanted))
        return Added::No;
    BusError error;
    if (send(m_bus.get(), call, error)) return Added::Yes;
    return error.is(collisionError) ? Added::NameTaken : Added::No;
}

bool AvahiSession::updateTxt(const ServiceAnnouncement& wanted) const {
    const Message call = newCall(m_bus.get(), m_group, groupInterface, "UpdateServiceTxt");
    BusError error;
    return call && appendService(call.get(), m_name.c_str()) &&
           sd_bus_message_append(call.get(), "s", "") >= 0 && appendTxt(call.get(), wanted) &&
           send(m_bus.get(), call, error);
}

bool AvahiSession::callGroup(const char* method) const {
    BusError error;
    return send(m_bus.get(), newCall(m_bus.get(), m_group, groupInterface, method), error);
}

void AvahiSession::takeAnotherName() {
    BusError error;
    sd_bus_message* answer = nullptr;
    sd_bus_call_method(m_bus.get(), avahi, "/", serverInterface, "GetAlternativeServiceName", error,
                       &answer, "s", m_name.c_str());
    const Message owner(answer);
    const char* name = nullptr;
    if (answer && sd_bus_message_read(answer, "s", &name) >= 0) m_name = name;
}

void AvahiSession::forgetGroup() {
    m_group.clear();
    m_published.reset();
}

void AvahiSession::freeGroup() {
    if (!m_group.empty()) (void)callGroup("Free");
    forgetGroup();
}

}  // namespace quietlark
