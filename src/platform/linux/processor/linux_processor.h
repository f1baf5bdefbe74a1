#pragma once

#include "platform/processor.h"

namespace quietlark {

/// Reads what the kernel says: on Apple's own hardware the device tree, elsewhere the first
/// processor of /proc/cpuinfo that has a "model name".
class LinuxProcessor final : public Processor {
public:
    explicit LinuxProcessor(QString procDirectory = QStringLiteral("/proc"));

    [[nodiscard]] QString brandString() const override;

private:
    const QString m_procDirectory;
};

}  // namespace quietlark
