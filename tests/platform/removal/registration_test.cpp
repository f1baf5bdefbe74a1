#include "platform/linux/removal/registration.h"

#include "platform/removal/file_tree.h"

namespace quietlark {
namespace {

class RegistrationTest : public FileTree {
protected:
    RegistrationTest() {
        write("home/.local/opt/Quietlark/bin/quietlark");
        write("home/.local/opt/Quietlark/share/systemd/user/net.quietlark.server.service");
    }

    QString bundle(const char* path = "") const {
        return at("home/.local/opt/Quietlark/") + QString::fromUtf8(path);
    }

    /// The list that installing leaves in the bundle.
    void note(const QStringList& paths) const {
        write("home/.local/opt/Quietlark/share/quietlark/registered",
              paths.join(u'\n').toUtf8() + '\n');
    }

    Registration::Traces traces() const {
        return Registration(at("home"), {at("home/.config"), at("home/.config")},
                            {at("home/.local/share")})
            .of(at("home/.local/opt/Quietlark"));
    }

    /// Below the home directory, in one line.
    std::string belowHome(QStringList paths) const {
        for (QString& path : paths)
            path = QDir(at("home")).relativeFilePath(path);
        return paths.join(u' ').toStdString();
    }
    static QStringList pathsOf(const Registration::Traces& traces) {
        QStringList paths;
        for (const Registration::Link& link : traces.links)
            paths << link.path;
        return paths;
    }

    std::string links() const {
        QStringList paths = pathsOf(traces());
        paths.sort();
        return belowHome(paths);
    }
    std::string folders() const { return belowHome(traces().folders); }
};

TEST_F(RegistrationTest, AllThatInstallingLeavesIsFound) {
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
    EXPECT_EQ(links(),
              ".config/autostart/net.quietlark.app.desktop "
              ".config/systemd/user/net.quietlark.server.service "
              ".local/bin/quietlark .local/bin/quietlark-server "
              ".local/share/applications/net.quietlark.app.desktop "
              ".local/share/icons/hicolor/48x48/apps/net.quietlark.app.png "
              ".local/share/icons/hicolor/scalable/apps/net.quietlark.app.svg "
              ".local/share/icons/hicolor/symbolic/apps/net.quietlark.app-symbolic.svg "
              ".local/share/metainfo/net.quietlark.app.metainfo.xml");
}

TEST_F(RegistrationTest, ALinkByWayOfAnotherIsFound) {
    link("home/.config/systemd/user/net.quietlark.server.service",
         QStringLiteral("../../../.local/opt/Quietlark/share/systemd/user/"
                        "net.quietlark.server.service"));
    link("home/.config/systemd/user/default.target.wants/net.quietlark.server.service",
         QStringLiteral("../net.quietlark.server.service"));
    EXPECT_EQ(links(),
              ".config/systemd/user/default.target.wants/net.quietlark.server.service "
              ".config/systemd/user/net.quietlark.server.service");
}

TEST_F(RegistrationTest, FilesAndLinksToOtherPlacesAreNot) {
    write("home/.local/bin/quietlark");
    write("home/.local/opt/Quietlark2/bin/quietlark");
    link("home/.local/bin/quietlark-server", at("home/.local/opt/Quietlark2/bin/quietlark"));
    link("home/.local/share/applications/net.quietlark.app.desktop", at("home"));
    link("home/.config/autostart/net.quietlark.app.desktop", bundle("../other"));
    link("home/.config/systemd/user/net.quietlark.server.service",
         QStringLiteral("net.quietlark.server.service"));
    link("home/.local/share/metainfo/net.quietlark.app.metainfo.xml", QStringLiteral("/dev/null"));
    EXPECT_EQ(links(), "");
}

TEST_F(RegistrationTest, LinksIntoTheBundleUnderOtherNamesAreTheUsers) {
    link("home/.local/bin/dictate", bundle("bin/quietlark"));
    link("home/Desktop/net.quietlark.app.desktop", bundle("share/a"));
    EXPECT_EQ(links(), "");
}

TEST_F(RegistrationTest, ListedLinksInDirectoriesThatTheSessionDoesNotKnowAreFound) {
    const QString menu = QStringLiteral("data/applications/net.quietlark.app.desktop");
    const QString icon = QStringLiteral("data/icons/hicolor/48x48/apps/net.quietlark.app.png");
    link(menu.toLatin1(), bundle("share/a"));
    link(icon.toLatin1(), bundle("share/b"));
    link("data/other", bundle("share/c"));
    link("data/man/man1/quietlark.1", at("home"));
    write("data/metainfo/net.quietlark.app.metainfo.xml");
    note({at("data/"), at("data/applications/"), at("") + u'/' + menu, at("") + icon,
          at("data/other"), at("data/man/man1/quietlark.1"),
          at("data/metainfo/net.quietlark.app.metainfo.xml"), at("data/missing/")});
    EXPECT_EQ(pathsOf(traces()), (QStringList{at("") + icon, at("") + menu}));
    EXPECT_EQ(traces().folders, (QStringList{at("data/applications"), at("data")}));
}

TEST_F(RegistrationTest, WithoutTheBundleThereAreNone) {
    link("home/.local/bin/quietlark", bundle("bin/quietlark"));
    const Registration registration(at("home"), {}, {});
    EXPECT_TRUE(registration.of(at("missing")).links.empty());
    EXPECT_TRUE(registration.of(QString()).links.empty());
}

// Folders

TEST_F(RegistrationTest, FoldersMadeForTheBundleAreToldFromTheInside) {
    link("home/.local/share/icons/hicolor/48x48/apps/net.quietlark.app.png", bundle("share/c"));
    note({at("home/.local/opt/"), at("home/.local/bin/"), at("home/.local/bin/quietlark"),
          at("home/.local/share/icons/hicolor/"), at("home/.local/share/icons/hicolor/48x48/"),
          at("home/.local/share/icons/hicolor/48x48/apps/"), at("home/.config/systemd/user/")});
    EXPECT_EQ(folders(),
              ".config/systemd/user .local/share/icons/hicolor/48x48/apps "
              ".local/share/icons/hicolor/48x48 .local/share/icons/hicolor .local/bin .local/opt");
}

TEST_F(RegistrationTest, AFolderThatSystemdHasMadeForTheServiceIsTold) {
    link("home/.config/systemd/user/default.target.wants/net.quietlark.server.service",
         bundle("lib/systemd/user/net.quietlark.server.service"));
    link("home/.config/systemd/user/other.target.wants/net.quietlark.server.service",
         QStringLiteral("/dev/null"));
    EXPECT_EQ(folders(), ".config/systemd/user/default.target.wants");
}

TEST_F(RegistrationTest, WhatElseTheListNamesIsNotOurs) {
    note({at("home/work/"), at("home/.local/opt/Other/"), QStringLiteral("/"), QString(),
          QStringLiteral("bin/"), at("home/.local/bin/../../work/"), at("home/.config/autostart")});
    EXPECT_EQ(folders(), "");
}

TEST_F(RegistrationTest, WithoutAListNoFolderWasMade) {
    link("home/.local/bin/quietlark", bundle("bin/quietlark"));
    EXPECT_EQ(folders(), "");
    makeFolder("home/.local/opt/Quietlark/share/quietlark/registered");
    EXPECT_EQ(folders(), "");
}

}  // namespace
}  // namespace quietlark
