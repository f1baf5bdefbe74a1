#include "servers/mdns_browser.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <utility>

#include <QHash>
#include <QStringDecoder>

#include "servers/blanks.h"

namespace quietlark {

namespace {

using namespace std::chrono_literals;
using TxtRecord = ResolvedService::TxtRecord;

constexpr auto resolveTimeout = 5s;

ServiceQuery transcriptionServers() {
    return {QStringLiteral("_whisper._tcp."), QStringLiteral("local.")};
}

/// The text of one key; absent when it is missing, empty or not UTF-8.
std::optional<QString> textOf(const TxtRecord& record, const QByteArray& key) {
    const auto found = record.constFind(key);
    if (found == record.cend()) return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    const QString decoded = decoder(*found);
    const QStringView text = trimmedOfBlanks(decoded);
    if (decoder.hasError() || text.isEmpty()) return std::nullopt;
    return text.toString();
}

/// The whole of `text` as a decimal number. Infinities and NaN are none, as they would upset every
/// comparison of servers.
std::optional<double> numberFrom(const QString& text) {
    QByteArray digits = text.toUtf8();
    if (digits.startsWith('+') && !digits.startsWith("+-")) digits.remove(0, 1);
    double number = 0;
    const auto [end, error] =
        std::from_chars(digits.constData(), digits.constData() + digits.size(), number);
    const bool isWhole = end == digits.constData() + digits.size();
    if (error != std::errc() || !isWhole || !std::isfinite(number)) return std::nullopt;
    return number;
}

QString hostOf(const FoundService& service, const ResolvedService& answer) {
    QString host = answer.hostName.value_or(service.name);
    if (answer.hostName && host.endsWith(u'.')) host.chop(1);
    return host;
}

MDNSBrowser::Entry entryOf(const FoundService& service, const ResolvedService& answer) {
    const TxtRecord record = answer.txtRecord.value_or(TxtRecord());
    const auto rtf = textOf(record, "rtf");
    return {
        .name = service.name,
        .host = hostOf(service, answer),
        .port = answer.port,
        .model = textOf(record, "model"),
        .rtf = rtf ? numberFrom(*rtf) : std::nullopt,
        .cpu = textOf(record, "cpu"),
    };
}

}  // namespace

QString MDNSBrowser::Entry::id() const {
    return name + u'|' + host + u':' + QString::number(port);
}

MDNSBrowser::MDNSBrowser(ServiceBrowserBackend& backend) : m_backend(backend) {}

void MDNSBrowser::start() {
    m_resolutions.clear();
    m_entries.clear();
    reportEntries();
    m_browse.cancel();
    m_browse =
        m_backend.browse(transcriptionServers(),
                         {.stateChanged = {},
                          .found = [this](const FoundService& service) { didFind(service); },
                          .removed = [this](const FoundService& service) { didRemove(service); }});
}

void MDNSBrowser::stop() {
    m_browse.cancel();
    m_resolutions.clear();
}

void MDNSBrowser::didFind(const FoundService& service) {
    // The question stays open after an answer, so that a server that changes is heard.
    m_resolutions[service.identity] =
        m_backend.resolve(service, resolveTimeout, [this, service](const auto& answer) {
            if (answer) {
                didResolve(service, *answer);
            } else {
                m_resolutions.erase(service.identity);
            }
        });
}

void MDNSBrowser::didRemove(const FoundService& service) {
    std::erase_if(m_entries, [&](const Entry& entry) { return entry.name == service.name; });
    m_resolutions.erase(service.identity);
    reportEntries();
}

void MDNSBrowser::didResolve(const FoundService& service, const ResolvedService& answer) {
    if (answer.port < 1) return;
    Entry entry = entryOf(service, answer);
    const QString id = entry.id();
    std::erase_if(m_entries, [&](const Entry& older) { return older.id() == id; });
    if (std::ranges::count(m_entries, entry.name, &Entry::name) >= maxEntriesPerName)
        m_entries.erase(std::ranges::find(m_entries, entry.name, &Entry::name));
    m_entries.push_back(std::move(entry));
    reportEntries();
}

void MDNSBrowser::reportEntries() {
    // A copy, as the observer may start or stop the browser.
    if (onChange) onChange(std::vector<Entry>(m_entries));
}

size_t qHash(const MDNSBrowser::Entry& entry, size_t seed) noexcept {
    using ::qHash;
    const auto feed = [&seed](const auto& value) { seed = qHash(value, seed); };
    const auto feedOptional = [&feed](const auto& value) {
        feed(value ? 1 : 0);
        if (value) feed(*value);
    };
    feed(entry.name);
    feed(entry.host);
    feed(entry.port);
    feedOptional(entry.model);
    feedOptional(entry.rtf);
    feedOptional(entry.cpu);
    return seed;
}

}  // namespace quietlark
