#include "tray_desktop.h"

#include <QColor>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDir>
#include <QFile>

namespace quietlark {

namespace {

const QString menuPath = QStringLiteral("/MenuBar");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");

constexpr auto panelSettings = R"([General]
__userfile__=true
panels=panel1

[panel1]
plugins=statusnotifier
position=Bottom
desktop=0
panelSize=32
iconSize=22

[statusnotifier]
type=statusnotifier
)";

void write(const QString& path, const char* content) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) file.write(content);
}

/// Number of the menu item with that label, in a dbusmenu's answer: an array of numbers with their
/// properties.
std::optional<int> itemLabelled(const QString& label, const QDBusArgument& items) {
    std::optional<int> found;
    items.beginArray();
    while (!items.atEnd()) {
        int id = 0;
        QVariantMap properties;
        items.beginStructure();
        items >> id >> properties;
        items.endStructure();
        if (properties.value(QStringLiteral("label")).toString() == label) found = id;
    }
    items.endArray();
    return found;
}

QList<QVariant> call(const QDBusConnection& bus, const QString& service, const QString& path,
                     const QString& interface, const QString& method,
                     const QList<QVariant>& arguments) {
    auto question = QDBusMessage::createMethodCall(service, path, interface, method);
    question.setArguments(arguments);
    return bus.call(question).arguments();
}

/// The bus name of the first program that has an icon in the tray.
QString notifierItem(const QDBusConnection& bus) {
    const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
    const auto answer =
        call(bus, watcher, QStringLiteral("/StatusNotifierWatcher"),
             QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
             {watcher, QStringLiteral("RegisteredStatusNotifierItems")});
    const auto items = answer.value(0).value<QDBusVariant>().variant().toStringList().value(0);
    return items.section(u'/', 0, 0);
}

bool choose(const QString& label, const QDBusConnection& bus) {
    const QString service = notifierItem(bus);
    const auto anyIds = QVariant::fromValue(QList<int>{1, 2, 3, 4, 5, 6});
    const auto items = call(bus, service, menuPath, menuInterface,
                            QStringLiteral("GetGroupProperties"), {anyIds, QStringList()});
    if (items.isEmpty()) return false;
    const auto id = itemLabelled(label, items[0].value<QDBusArgument>());
    if (!id) return false;
    const auto noData = QVariant::fromValue(QDBusVariant(QString()));
    call(bus, service, menuPath, menuInterface, QStringLiteral("Event"),
         {*id, QStringLiteral("clicked"), noData, 0u});
    return true;
}

}  // namespace

TrayDesktop::TrayDesktop(Host host)
    : m_host(host),
      m_bus(QStringLiteral("dbus-daemon"), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                            QStringLiteral("--print-address")}),
      m_busAddress(QString::fromLatin1(m_bus.readLine())) {
    write(m_home.filePath(QStringLiteral(".config/lxqt/panel.conf")), panelSettings);
}

QProcessEnvironment TrayDesktop::environment() const {
    auto environment = m_screen.environment();
    environment.insert(QStringLiteral("HOME"), m_home.path());
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_busAddress);
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    for (const char* name :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CURRENT_DESKTOP"})
        environment.remove(QString::fromLatin1(name));
    return environment;
}

void TrayDesktop::startHost() {
    const QString program =
        m_host == Host::icewm ? QStringLiteral("icewm") : QStringLiteral("lxqt-panel");
    m_hostProcess = std::make_unique<ChildProcess>(program, QStringList(), environment());
}

void TrayDesktop::stopHost() {
    m_hostProcess.reset();
}

bool TrayDesktop::startProgram() {
    m_program =
        std::make_unique<ChildProcess>(QStringLiteral(TRAY_PROGRAM), QStringList(), environment());
    return m_program->readLine() == "ready";
}

std::optional<QRect> TrayDesktop::areaOf(const QColor& color) {
    const QImage shown = screen();
    QRect area;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            if (shown.pixel(x, y) == color.rgb()) area |= QRect(x, y, 1, 1);
        }
    }
    if (area.isEmpty()) return std::nullopt;
    return area;
}

QImage TrayDesktop::screen() {
    const QString file = m_home.filePath(QStringLiteral("screen.png"));
    m_screen.run(QStringLiteral("scrot"), {QStringLiteral("--overwrite"), file});
    return QImage(file).convertToFormat(QImage::Format_RGB32);
}

void TrayDesktop::click(const QPoint& point, int button) {
    m_screen.run(QStringLiteral("xdotool"),
                 {QStringLiteral("mousemove"), QString::number(point.x()),
                  QString::number(point.y()), QStringLiteral("click"), QString::number(button)});
}

void TrayDesktop::pressKeys(const QStringList& keys) {
    m_screen.run(QStringLiteral("xdotool"), QStringList{QStringLiteral("key")} + keys);
}

bool TrayDesktop::chooseOnBus(const QString& label) {
    const QString connectionName = QStringLiteral("tray_desktop");
    const auto bus = QDBusConnection::connectToBus(m_busAddress, connectionName);
    const bool chosen = choose(label, bus);
    QDBusConnection::disconnectFromBus(connectionName);
    return chosen;
}

}  // namespace quietlark
