#include "app/bundle.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quietlark {

namespace {

const QString fingerprintKey = QStringLiteral("lastRegisteredExecutableFingerprint");

QString decimalText(double seconds) {
    // Long enough for any double without an exponent.
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), seconds,
                                   std::chars_format::fixed)
                         .ptr;
    const QString text = QString::fromLatin1(buffer.data(), end - buffer.data());
    return text.contains(u'.') ? text : text + QStringLiteral(".0");
}

}  // namespace

Bundle::Bundle(const Installation& installation, UserDefaults& defaults)
    : m_installation(installation), m_defaults(defaults) {}

bool Bundle::isInApplications() const {
    const QStringList roots = m_installation.applicationRoots();
    return std::any_of(roots.begin(), roots.end(), [this](const QString& root) {
        return m_installation.bundlePath().startsWith(root, Qt::CaseSensitive);
    });
}

std::optional<QString> Bundle::executableFingerprint() const {
    const auto modified = m_installation.executableModificationDate();
    if (!modified) return std::nullopt;
    return decimalText(*modified);
}

bool Bundle::isRegisteredExecutable() const {
    const auto fingerprint = executableFingerprint();
    return !fingerprint || m_defaults.string(fingerprintKey) == fingerprint;
}

void Bundle::rememberRegisteredExecutable() {
    if (const auto fingerprint = executableFingerprint()) {
        m_defaults.set(fingerprintKey, *fingerprint);
    } else {
        m_defaults.remove(fingerprintKey);
    }
}

}  // namespace quietlark
