#include "config/config.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

#include "config/json_member.h"
#include "platform/base_directories.h"
#include "platform/regular_file.h"

namespace quietlark {

namespace {

constexpr QLatin1String serverModeKey("serverMode");
constexpr QLatin1String hotkeyKey("hotkey");
constexpr QLatin1String toggleHotkeyKey("toggleHotkey");
constexpr QLatin1String languageKey("language");
constexpr QLatin1String launchAtLoginKey("launchAtLogin");
constexpr QLatin1String onboardingCompleteKey("onboardingComplete");
constexpr QLatin1String onboardingStepKey("onboardingStep");

// Hundreds of times what the settings take up.
constexpr qsizetype maxFileBytes = 1024 * 1024;

QString userConfigurationFile() {
    const QString directory = configHome();
    if (directory.isEmpty()) qFatal("There is no directory for the user's settings");
    return QDir(directory).filePath(QStringLiteral("Quietlark/config.json"));
}

tl::unexpected<SaveError> saveError(const QString& path, const QString& reason) {
    const QString text = QCoreApplication::translate(
        "Config", "The settings could not be saved to %1: %2.", "file name, reason");
    return tl::unexpected(SaveError{text.arg(path, reason)});
}

}  // namespace

const QString& Config::defaultFileURL() {
    static const QString path = userConfigurationFile();
    return path;
}

Config Config::load(const QString& path) {
    const auto content = readRegularFile(path, maxFileBytes, FileTrust::Anyone);
    if (!content) return {};
    return fromJson(*content).value_or(Config());
}

bool Config::isDamaged(const QString& path) {
    if (!QFileInfo::exists(path)) return false;
    const auto content = readRegularFile(path, maxFileBytes, FileTrust::Anyone);
    return !content || !fromJson(*content);
}

std::optional<Config> Config::fromJson(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) return std::nullopt;
    const QJsonObject object = document.object();
    const auto serverMode = serverModeFromJson(object.value(serverModeKey));
    const auto hotkey = stringMember(object, hotkeyKey);
    const auto toggleHotkey = stringMember(object, toggleHotkeyKey);
    const auto language = stringMember(object, languageKey);
    const auto launchAtLogin = booleanMember(object, launchAtLoginKey);
    const auto onboardingComplete = booleanMember(object, onboardingCompleteKey);
    const auto onboardingStep = integerMember(object, onboardingStepKey);
    if (!serverMode || !hotkey || !toggleHotkey || !language || !launchAtLogin ||
        !onboardingComplete || !onboardingStep) {
        return std::nullopt;
    }
    return Config{*serverMode,         *hotkey,        *toggleHotkey, *language, *launchAtLogin,
                  *onboardingComplete, *onboardingStep};
}

QByteArray Config::toJson() const {
    // QJsonObject keeps its members sorted by key.
    const QJsonObject object{
        {serverModeKey, serverModeToJson(serverMode)},
        {hotkeyKey, hotkey},
        {toggleHotkeyKey, toggleHotkey},
        {languageKey, language},
        {launchAtLoginKey, launchAtLogin},
        {onboardingCompleteKey, onboardingComplete},
        {onboardingStepKey, qint64{onboardingStep}},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Indented);
}

tl::expected<void, SaveError> Config::save(const QString& path) const {
    const QString directory = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(directory)) {
        return saveError(path,
                         QCoreApplication::translate("Config", "its directory cannot be created"));
    }
    QSaveFile file(path);
    const QByteArray json = toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(json) != json.size() || !file.commit()) {
        return saveError(path, file.errorString());
    }
    return {};
}

}  // namespace quietlark
