#include "server/server_presence.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace quietlark {
namespace {

constexpr double worthAnnouncing = 0.1;

std::string twoDecimals(double number) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f", number);
    return text.data();
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
    const bool isNews = twoDecimals(rtf) != twoDecimals(m_rtf);
    m_rtf = rtf;
    if (m_stage != Stage::Present || !m_isReady || !isNews) return;
    const auto published = publish();
    if (!published) m_log.write(LogLevel::Error, published.error());
    if (std::abs(m_rtf - m_announcedRtf) > worthAnnouncing * m_announcedRtf) announce();
}

void ServerPresence::disappear() {
    const std::lock_guard lock(m_mutex);
    if (m_stage == Stage::Present) hide();
    m_stage = Stage::Gone;
}

tl::expected<void, std::string> ServerPresence::publish() {
    return m_endpointFile.publish(
        {.local = m_identity.local, .display = m_identity.display, .rtf = m_rtf});
}

void ServerPresence::announce() {
    if (!m_announcer) return;
    m_announcedRtf = m_rtf;
    ServiceAnnouncement announcement{
        .name = m_identity.name,
        .port = static_cast<std::uint16_t>(m_identity.port),
        .txt = {{"rtf", twoDecimals(m_rtf)}, {"model", m_identity.model}}};
    if (!m_identity.cpu.empty()) announcement.txt.emplace_back("cpu", m_identity.cpu);
    m_announcer->announce(announcement);
}

void ServerPresence::hide() {
    m_endpointFile.withdraw();
    if (m_announcer) m_announcer->withdraw();
}

}  // namespace quietlark
