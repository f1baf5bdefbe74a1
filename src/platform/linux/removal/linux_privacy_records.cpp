#include "platform/linux/removal/linux_privacy_records.h"

#include <memory>
#include <utility>

#include <QProcess>

namespace quietlark {

LinuxPrivacyRecords::LinuxPrivacyRecords(QString asker) : m_asker(std::move(asker)) {}

std::optional<QString> LinuxPrivacyRecords::resetCommand(PrivacyService, const QString&) const {
    return std::nullopt;
}

Cancellable LinuxPrivacyRecords::runAsAdministrator(const QString& line,
                                                    std::function<void()> onDone) {
    auto* process = new QProcess;
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    const auto callback = std::make_shared<std::function<void()>>(std::move(onDone));
    // Of the two signals the one that comes.
    const auto end = [process, callback] {
        process->deleteLater();
        if (const auto done = std::exchange(*callback, nullptr)) done();
    };
    QObject::connect(process, &QProcess::finished, process, end);
    QObject::connect(
        process, &QProcess::errorOccurred, process,
        [end](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) end();
        },
        Qt::QueuedConnection);
    process->start(m_asker, {QStringLiteral("/bin/sh"), QStringLiteral("-c"), line});
    return Cancellable([callback] { *callback = nullptr; });
}

}  // namespace quietlark
