#pragma once

#include "platform/installation.h"

namespace quietlark {

/// A program that is installed where, and since when, the test says.
class FakeInstallation final : public Installation {
public:
    QString path = QStringLiteral("/opt/Quietlark");
    std::optional<QString> identifier = QStringLiteral("net.quietlark.app");
    QStringList roots{QStringLiteral("/opt/"), QStringLiteral("/home/me/.local/opt/"),
                      QStringLiteral("/usr/")};
    std::optional<double> modified = 1'700'000'000.25;

    [[nodiscard]] QString bundlePath() const override { return path; }
    [[nodiscard]] std::optional<QString> bundleIdentifier() const override { return identifier; }
    [[nodiscard]] QStringList applicationRoots() const override { return roots; }
    [[nodiscard]] std::optional<double> executableModificationDate() const override {
        return modified;
    }
};

}  // namespace quietlark
