#include "commands/download_progress.h"

#include <algorithm>

#include <QCoreApplication>
#include <QLocale>

namespace quietlark {

namespace {

constexpr std::chrono::seconds measure{1};
// How much a new measurement counts; the rest is what was measured before.
constexpr double weight = 0.2;
constexpr int maxBarColumns = 40;

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(DownloadProgress)

public:
    static QString amount(const QString& bytes, const QString& total) {
        return tr("%1 of %2").arg(bytes, total);
    }
    static QString left(const QString& time) { return tr("%1 left").arg(time); }
};

QString size(double bytes) {
    return QLocale::c().formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
}

/// Such as "1:20" or "1:02:03".
QString clock(qint64 seconds) {
    const auto twoDigits = [](qint64 number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    const qint64 minutes = seconds / 60;
    const QString end = u':' + twoDigits(seconds % 60);
    if (minutes < 60) return QString::number(minutes) + end;
    return QString::number(minutes / 60) + u':' + twoDigits(minutes % 60) + end;
}

}  // namespace

void DownloadProgress::report(TimePoint now, qint64 bytesWritten, qint64 totalBytes) {
    m_bytesWritten = bytesWritten;
    m_totalBytes = totalBytes;
    if (bytesWritten > 0) updateRate(now);
}

void DownloadProgress::updateRate(TimePoint now) {
    if (m_measuredFrom && now - *m_measuredFrom < measure) return;
    if (m_measuredFrom) {
        const std::chrono::duration<double> seconds = now - *m_measuredFrom;
        const auto bytes = static_cast<double>(m_bytesWritten - m_measuredFromBytes);
        const double rate = bytes / seconds.count();
        m_bytesPerSecond = weight * rate + (1 - weight) * m_bytesPerSecond.value_or(rate);
    }
    m_measuredFrom = now;
    m_measuredFromBytes = m_bytesWritten;
}

QString DownloadProgress::line() const {
    QStringList parts;
    if (const auto done = share()) {
        parts << QStringLiteral("%1 %").arg(static_cast<int>(*done * 100), 3);
        parts << Texts::amount(size(static_cast<double>(m_bytesWritten)),
                               size(static_cast<double>(m_totalBytes)));
    } else {
        parts << size(static_cast<double>(m_bytesWritten));
    }
    if (m_bytesPerSecond) parts << size(*m_bytesPerSecond) + QStringLiteral("/s");
    if (const QString left = timeLeft(); !left.isEmpty()) parts << left;
    return parts.join(QStringLiteral("  "));
}

QString DownloadProgress::bar(int columns) const {
    const QString text = line();
    const auto room = std::min<qsizetype>(maxBarColumns, columns - text.size() - 4);
    const auto done = share();
    if (!done || room < 10) return text.left(columns);
    const auto full = static_cast<qsizetype>(*done * static_cast<double>(room));
    return u'[' + QString(full, u'#') + QString(room - full, u'-') + QStringLiteral("] ") + text;
}

std::optional<double> DownloadProgress::share() const {
    if (m_totalBytes < 1) return std::nullopt;
    return std::min(1.0, static_cast<double>(m_bytesWritten) / static_cast<double>(m_totalBytes));
}

QString DownloadProgress::timeLeft() const {
    const qint64 missing = m_totalBytes - m_bytesWritten;
    if (m_totalBytes < 1 || !m_bytesPerSecond || *m_bytesPerSecond < 1 || missing < 1) return {};
    const double seconds = static_cast<double>(missing) / *m_bytesPerSecond;
    // Beyond two days it is a guess.
    if (seconds > 48 * 3600) return {};
    return Texts::left(clock(static_cast<qint64>(seconds) + 1));
}

}  // namespace quietlark
