#include "server/server_presence.h"

#include <cmath>

#include "server/text_forms.h"

namespace quietlark {
namespace {

// Changes by more than these parts of what was said before.
constexpr double worthPublishing = 0.01;
constexpr double worthAnnouncing = 0.1;

bool differs(double one, double other, double part) {
    return std::abs(one - other) > part * other;
}

}  // namespace

ServerPresence::ServerPresence(EndpointFileWriter& endpointFile, ServiceAnnouncer* announcer,
                               Log& log)
    : m_endpointFile(endpointFile), m_announcer(announcer), m_log(log) {}

tl::expected<void, std::string> ServerPresence::appear(const Identity& identity) {
    const std::lock_guard lock(m_mutex);
    if (m_stage == Stage::Gone) return {};
    m_identity = identity;
    m_stage = Stage::Present;
    if (!m_isReady) return {};
    auto published = publish();
    if (published) announce();
    return published;
}

void ServerPresence::setReady(bool isReady) {
    const std::lock_guard lock(m_mutex);
    if (isReady == m_isReady) return;
    m_isReady = isReady;
    if (m_stage != Stage::Present) return;
    if (!isReady) return hide();
    const auto published = publish();
    if (!published) m_log.write(LogLevel::Error, published.error());
    announce();
}

void ServerPresence::setSpeed(double rtf) {
    const std::lock_guard lock(m_mutex);
    m_rtf = rtf;
    if (m_stage != Stage::Present || !m_isReady) return;
    if (differs(m_rtf, m_publishedRtf, worthPublishing)) {
        const auto published = publish();
        if (!published) m_log.write(LogLevel::Error, published.error());
    }
    if (differs(m_rtf, m_announcedRtf, worthAnnouncing)) announce();
}

void ServerPresence::refresh() {
    const std::lock_guard lock(m_mutex);
    if (m_stage != Stage::Present || !m_isReady || m_endpointFile.isPublished()) return;
    if (publish() && m_endpointFile.isPublished())
        m_log.write(LogLevel::Info, "The endpoint file was gone, and is there again.");
}

void ServerPresence::disappear() {
    const std::lock_guard lock(m_mutex);
    if (m_stage == Stage::Present) hide();
    m_stage = Stage::Gone;
}

tl::expected<void, std::string> ServerPresence::publish() {
    m_publishedRtf = m_rtf;
    auto published = m_endpointFile.publish(
        {.local = m_identity.local, .display = m_identity.display, .rtf = m_rtf});
    const bool isLeftOut = published && !m_endpointFile.isPublished();
    if (isLeftOut && !m_isLeftOut)
        m_log.write(LogLevel::Info,
                    "Another server runs already; Quietlark on this computer keeps to that.");
    m_isLeftOut = isLeftOut;
    return published;
}

void ServerPresence::announce() {
    if (!m_announcer) return;
    m_announcedRtf = m_rtf;
    ServiceAnnouncement announcement{
        .name = m_identity.name,
        .port = static_cast<std::uint16_t>(m_identity.port),
        .txt = {{"rtf", decimals(m_rtf)}, {"model", m_identity.model}}};
    if (!m_identity.cpu.empty()) announcement.txt.emplace_back("cpu", m_identity.cpu);
    m_announcer->announce(announcement);
}

void ServerPresence::hide() {
    m_endpointFile.withdraw();
    if (m_announcer) m_announcer->withdraw();
}

}  // namespace quietlark
