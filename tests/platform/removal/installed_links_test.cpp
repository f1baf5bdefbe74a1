#include "platform/linux/removal/installed_links.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class InstalledLinksTest : public FileTree {
protected:
    InstalledLinksTest() {
        write("home/.local/opt/Quietlark/bin/quietlark");
        write("home/.local/opt/Quietlark/share/systemd/user/net.quietlark.server.service");
    }

    QString bundle(const char* path = "") const {
        return at("home/.local/opt/Quietlark/") + QString::fromUtf8(path);
    }

    /// Below the home directory, in one line.
    std::string found() const {
        const InstalledLinks links(at("home"), {at("home/.config"), at("home/.config")},
                                   {at("home/.local/share")});
        QStringList paths = links.into(at("home/.local/opt/Quietlark"));
        paths.sort();
        for (QString& path : paths)
            path = QDir(at("home")).relativeFilePath(path);
        return paths.join(u' ').toStdString();
    }
};

TEST_F(InstalledLinksTest, AllThatInstallingLeavesIsFound) {
    link("home/.local/bin/quietlark", bundle("bin/quietlark"));
    link("home/.local/bin/quietlark-server", bundle("bin/quietlark-server"));
    link("home/.local/share/applications/net.quietlark.app.desktop", bundle("share/a"));
    link("home/.local/share/icons/hicolor/scalable/apps/net.quietlark.app.svg", bundle("share/b"));
    link("home/.local/share/icons/hicolor/48x48/apps/net.quietlark.app.png", bundle("share/c"));
    link("home/.local/share/icons/hicolor/symbolic/apps/net.quietlark.app-symbolic.svg",
         bundle("share/d"));
    link("home/.local/share/metainfo/net.quietlark.app.metainfo.xml", bundle("share/e"));
    link("home/.config/systemd/user/net.quietlark.server.service",
         bundle("share/systemd/user/net.quietlark.server.service"));
    link("home/.config/autostart/net.quietlark.app.desktop", bundle("share/f"));
    EXPECT_EQ(found(),
              ".config/autostart/net.quietlark.app.desktop "
              ".config/systemd/user/net.quietlark.server.service "
              ".local/bin/quietlark .local/bin/quietlark-server "
              ".local/share/applications/net.quietlark.app.desktop "
              ".local/share/icons/hicolor/48x48/apps/net.quietlark.app.png "
              ".local/share/icons/hicolor/scalable/apps/net.quietlark.app.svg "
              ".local/share/icons/hicolor/symbolic/apps/net.quietlark.app-symbolic.svg "
              ".local/share/metainfo/net.quietlark.app.metainfo.xml");
}

TEST_F(InstalledLinksTest, ALinkByWayOfAnotherIsFound) {
    link("home/.config/systemd/user/net.quietlark.server.service",
         QStringLiteral("../../../.local/opt/Quietlark/share/systemd/user/"
                        "net.quietlark.server.service"));
    link("home/.config/systemd/user/default.target.wants/net.quietlark.server.service",
         QStringLiteral("../net.quietlark.server.service"));
    EXPECT_EQ(found(),
              ".config/systemd/user/default.target.wants/net.quietlark.server.service "
              ".config/systemd/user/net.quietlark.server.service");
}

TEST_F(InstalledLinksTest, FilesAndLinksToOtherPlacesAreNot) {
    write("home/.local/bin/quietlark");
    write("home/.local/opt/Quietlark2/bin/quietlark");
    link("home/.local/bin/quietlark-server", at("home/.local/opt/Quietlark2/bin/quietlark"));
    link("home/.local/share/applications/net.quietlark.app.desktop", at("home"));
    link("home/.config/autostart/net.quietlark.app.desktop", bundle("../other"));
    link("home/.config/systemd/user/net.quietlark.server.service",
         QStringLiteral("net.quietlark.server.service"));
    link("home/.local/share/metainfo/net.quietlark.app.metainfo.xml", QStringLiteral("/dev/null"));
    EXPECT_EQ(found(), "");
}

TEST_F(InstalledLinksTest, LinksIntoTheBundleUnderOtherNamesAreTheUsers) {
    link("home/.local/bin/dictate", bundle("bin/quietlark"));
    link("home/Desktop/net.quietlark.app.desktop", bundle("share/a"));
    EXPECT_EQ(found(), "");
}

TEST_F(InstalledLinksTest, WithoutTheBundleThereAreNone) {
    link("home/.local/bin/quietlark", bundle("bin/quietlark"));
    const InstalledLinks links(at("home"), {}, {});
    EXPECT_TRUE(links.into(at("missing")).isEmpty());
    EXPECT_TRUE(links.into(QString()).isEmpty());
}

}  // namespace
}  // namespace quietlark
