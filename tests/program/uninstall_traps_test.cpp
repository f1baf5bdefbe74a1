#include <array>
#include <memory>

#include <fcntl.h>

#include "app/uninstall.h"
#include "fakes/fake_app_windows.h"
#include "fakes/fake_application_shell.h"
#include "fakes/fake_installation.h"
#include "platform/base_directories.h"
#include "platform/posix/descriptor.h"
#include "platform/removal/file_tree.h"
#include "program/own_traces.h"
#include "state/app_state_fixture.h"

namespace quietlark {
namespace {

/// The uninstaller and the files of a computer on which things are odd. "/" is a directory of the
/// test's own, so that a mistake costs nothing.
class UninstallTrapsTest : public AppStateFixture {
protected:
    void SetUp() override {
        if (!canMount()) GTEST_SKIP() << "only root can have a root directory of its own";
        m_outside = Descriptor(::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        const QString root = directory.filePath(QStringLiteral("root"));
        ASSERT_TRUE(QDir().mkpath(root + QStringLiteral("/tmp")));
        ASSERT_EQ(::chroot(QFile::encodeName(root).constData()), 0);
        for (const char* path : othersFiles)
            write(path);
        QDir::setCurrent(QStringLiteral("/home/me/work"));
        for (const char* variable :
             {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME",
              "XDG_RUNTIME_DIR", "TMPDIR", "QUIETLARK_ENDPOINT_FILE"})
            qunsetenv(variable);
        qputenv("HOME", "/home/me");
    }

    void TearDown() override {
        if (!m_outside.isOpen()) return;
        ASSERT_EQ(::fchdir(m_outside.number()), 0);
        ASSERT_EQ(::chroot("."), 0);
    }

    static void write(const QString& path, const QByteArray& content = "content") {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path())) << path.toStdString();
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
        file.write(content);
    }
    static void write(const char* path) { write(QString::fromLatin1(path)); }
    static void link(const char* path, const char* target) {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(QString::fromLatin1(path)).path()));
        ASSERT_TRUE(QFile::link(QString::fromLatin1(target), QString::fromLatin1(path)));
    }
    static bool exists(const char* path) {
        struct stat status {};
        return ::lstat(path, &status) == 0;
    }
    static void install(const char* bundle) {
        const QString path = QString::fromLatin1(bundle);
        write(path + QStringLiteral("/bin/quietlark"));
        write(path + QStringLiteral("/lib/libpart.so"));
        write(path + QStringLiteral("/share/applications/net.quietlark.app.desktop"));
    }

    /// The program as it has been used in this environment.
    void useProgram() {
        files = {configHome() + QStringLiteral("/Quietlark/config.json"),
                 ModelFiles::atDefaultDirectory(), EndpointFile()};
        m_traces.reset();
        restart();
        saved(manualRemote());
        ASSERT_TRUE(files.model.ensureDirectory().has_value());
        write(files.model.active());
        traces().defaults.set(QStringLiteral("key"), QStringLiteral("value"));
        ASSERT_TRUE(traces().loginItem.registerItem().has_value());
        write("/tmp/quietlark.log");
    }

    void uninstall() {
        Uninstall::Computer computer{installation,   traces().defaults, traces().loginItem,
                                     traces().files, traces().privacy,  traces().recycler};
        WindowPresenter presenter(windows, shell);
        Uninstall uninstaller(state(), presenter, computer);
        bool isFinished = false;
        QObject::connect(&uninstaller, &Uninstall::finished, [&] { isFinished = true; });
        uninstaller.run();
        shell.answer(true);
        settle();
        shell.closeAlert();
        EXPECT_TRUE(isFinished);
    }

    void useAndUninstall() {
        useProgram();
        uninstall();
        expectOthersFiles();
    }

    static void expectOthersFiles() {
        for (const char* path : othersFiles) {
            QFile file(QString::fromLatin1(path));
            EXPECT_TRUE(file.open(QIODevice::ReadOnly) && file.readAll() == "content") << path;
        }
    }

    OwnTraces& traces() {
        if (!m_traces) m_traces = std::make_unique<OwnTraces>(files.config);
        return *m_traces;
    }

    static constexpr std::array othersFiles{
        "/thesis",
        "/etc/passwords",
        "/usr/bin/other",
        "/usr/lib/other.so",
        "/usr/share/applications/other.desktop",
        "/opt/other/bin/other",
        "/tmp/other",
        "/Quietlark.d/thesis",
        "/home/other/thesis",
        "/home/me/thesis",
        "/home/me/work/thesis",
        "/home/me/work/Quietlark/thesis",
        "/home/me/.config/thesis",
        "/home/me/.config/Other/config.json",
        "/home/me/.config/autostart/other.desktop",
        "/home/me/.local/bin/other",
        "/home/me/.local/opt/Other/bin/other",
        "/home/me/.local/share/Other/models/active.bin",
        "/home/me/Documents/Quietlark/thesis",
        "/home/me/Documents/Quietlark/models/thesis",
    };

    FakeAppWindows windows;
    FakeApplicationShell shell;
    FakeInstallation installation;

private:
    Descriptor m_outside;
    std::unique_ptr<OwnTraces> m_traces;
};

TEST_F(UninstallTrapsTest, OrdinarilyAllThatIsLeftIsInTheTrash) {
    installation.path = QStringLiteral("/home/me/.local/opt/Quietlark");
    const auto before = listFiles(QStringLiteral("/"));
    install("/home/me/.local/opt/Quietlark");
    link("/home/me/.local/bin/quietlark", "/home/me/.local/opt/Quietlark/bin/quietlark");
    useAndUninstall();
    QStringList after = listFiles(QStringLiteral("/"));
    after.removeIf([](const QString& path) {
        return path.startsWith(QStringLiteral("home/me/.local/share/Trash"));
    });
    EXPECT_EQ(after, before);
    EXPECT_TRUE(exists("/home/me/.local/share/Trash/files/Quietlark/bin/quietlark"));
    EXPECT_TRUE(shell.alerts().empty());
}

TEST_F(UninstallTrapsTest, AHomeDirectoryThatIsTheRootDirectory) {
    qputenv("HOME", "/");
    useAndUninstall();
    EXPECT_FALSE(exists("/.config/Quietlark"));
    EXPECT_FALSE(exists("/.local/share/Quietlark"));
}

TEST_F(UninstallTrapsTest, NoHomeDirectory) {
    for (const char* home : {"", "work"}) {
        qputenv("HOME", home);
        useAndUninstall();
        EXPECT_FALSE(exists("/.config/Quietlark"));
    }
    qunsetenv("HOME");
    useAndUninstall();
}

TEST_F(UninstallTrapsTest, EmptyVariables) {
    qputenv("XDG_CONFIG_HOME", "");
    qputenv("XDG_DATA_HOME", "");
    qputenv("QUIETLARK_ENDPOINT_FILE", "");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
}

TEST_F(UninstallTrapsTest, RelativeVariables) {
    for (const char* relative : {".", "..", "work", "../work"}) {
        qputenv("XDG_CONFIG_HOME", relative);
        qputenv("XDG_DATA_HOME", relative);
        qputenv("QUIETLARK_ENDPOINT_FILE", "thesis");
        useAndUninstall();
        EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
    }
}

TEST_F(UninstallTrapsTest, VariablesThatNameTheRootDirectory) {
    for (const char* root : {"/", "//", "/.", "/home/../"}) {
        qputenv("XDG_CONFIG_HOME", root);
        qputenv("XDG_DATA_HOME", root);
        useAndUninstall();
        EXPECT_FALSE(exists("/Quietlark"));
    }
}

TEST_F(UninstallTrapsTest, VariablesThatNameADirectoryWithAQuietlarkOfTheUsers) {
    for (const char* place : {"/home/me/Documents", "/home/me/work"}) {
        qputenv("XDG_CONFIG_HOME", place);
        qputenv("XDG_DATA_HOME", place);
        useAndUninstall();
    }
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/config.json"));
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/models/active.bin"));
}

TEST_F(UninstallTrapsTest, AVariableThatMakesTheSettingsFolderTheHomeDirectory) {
    write("/home/Quietlark/thesis");
    qputenv("HOME", "/home/Quietlark");
    qputenv("XDG_CONFIG_HOME", "/home");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/Quietlark/thesis"));
    EXPECT_FALSE(exists("/home/Quietlark/config.json"));
}

TEST_F(UninstallTrapsTest, AVariableThatMakesTheSettingsFolderTheBundle) {
    qputenv("XDG_CONFIG_HOME", "/home/me/.local/opt");
    installation.path = QStringLiteral("/home/me/.local/opt/Quietlark");
    install("/home/me/.local/opt/Quietlark");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.local/share/Trash/files/Quietlark/bin/quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/opt/Quietlark"));
}

TEST_F(UninstallTrapsTest, AVariableThatNamesAFolderInTheSettings) {
    qputenv("XDG_DATA_HOME", "/home/me/.config/Quietlark/data");
    write("/home/me/.config/Quietlark/data/mail/thesis");
    write("/home/me/.config/Quietlark/data/Trash/files/thesis");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.config/Quietlark/data/mail/thesis"));
    EXPECT_TRUE(exists("/home/me/.config/Quietlark/data/Trash/files/thesis"));
    EXPECT_FALSE(exists("/home/me/.config/Quietlark/config.json"));
    EXPECT_FALSE(exists("/home/me/.config/Quietlark/data/Quietlark"));
}

TEST_F(UninstallTrapsTest, AVariableThatNamesAFolderInTheModels) {
    qputenv("XDG_CONFIG_HOME", "/home/me/.local/share/Quietlark");
    write("/home/me/.local/share/Quietlark/mail/settings");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/.local/share/Quietlark/mail/settings"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/models"));
}

TEST_F(UninstallTrapsTest, OtherVariablesThatNameAFolderInTheSettings) {
    for (const char* variable : {"XDG_STATE_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
        qputenv(variable, "/home/me/.config/Quietlark/state");
        write("/home/me/.config/Quietlark/state/mail/thesis");
        useAndUninstall();
        EXPECT_TRUE(exists("/home/me/.config/Quietlark/state/mail/thesis")) << variable;
        EXPECT_FALSE(exists("/home/me/.config/Quietlark/config.json")) << variable;
        qunsetenv(variable);
    }
}

TEST_F(UninstallTrapsTest, FilesOfTheUsersNamedAlmostAsOurs) {
    const std::array theirs{"/home/me/Documents/Quietlark/config.json.of-my-thesis",
                            "/home/me/Documents/Quietlark/config.json.backup",
                            "/home/me/Documents/Quietlark/defaults.ini.old",
                            "/home/me/Documents/Quietlark/models/active.bin.backup"};
    for (const char* path : theirs)
        write(path);
    qputenv("XDG_CONFIG_HOME", "/home/me/Documents");
    qputenv("XDG_DATA_HOME", "/home/me/Documents");
    useProgram();
    for (const QString& path : {files.model.partial(), files.model.received(), files.model.resume(),
                                files.model.resume() + QStringLiteral(".new"), files.model.name(),
                                files.config + QStringLiteral(".aBcDeF")})
        write(path);
    uninstall();
    expectOthersFiles();
    for (const char* path : theirs)
        EXPECT_TRUE(exists(path)) << path;
    EXPECT_EQ(listFiles(QStringLiteral("/home/me/Documents/Quietlark/models")),
              (QStringList{QStringLiteral("active.bin.backup"), QStringLiteral("thesis")}));
    EXPECT_FALSE(exists("/home/me/Documents/Quietlark/config.json.aBcDeF"));
}

TEST_F(UninstallTrapsTest, TheHomeDirectoryOfAnotherUser) {
    useProgram();
    install("/home/me/.local/opt/Quietlark");
    link("/home/me/.local/bin/quietlark", "/opt/Quietlark/bin/quietlark");
    QDirIterator each(QStringLiteral("/home/me"),
                      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    ASSERT_EQ(::chown("/home/me", 1234, 1234), 0);
    while (each.hasNext())
        ASSERT_EQ(::lchown(QFile::encodeName(each.next()).constData(), 1234, 1234), 0);
    const auto before = listFiles(QStringLiteral("/home/me"));
    for (const char* bundle : {"/opt/Quietlark", "/home/me/.local/opt/Quietlark"}) {
        install("/opt/Quietlark");
        installation.path = QString::fromLatin1(bundle);
        uninstall();
        ASSERT_FALSE(shell.alerts().empty());
        EXPECT_EQ(shell.alerts().back().title,
                  QStringLiteral("Couldn't move Quietlark to the Trash"));
        EXPECT_EQ(listFiles(QStringLiteral("/home/me")), before);
    }
    expectOthersFiles();
}

TEST_F(UninstallTrapsTest, FoldersThatAreLinksToElsewhere) {
    link("/home/me/.config/Quietlark", "../Documents/Quietlark");
    link("/home/me/.local/share/Quietlark", "/home/me/Documents/Quietlark");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
}

TEST_F(UninstallTrapsTest, LinksOutOfTheFolders) {
    useProgram();
    for (const char* path :
         {"/home/me/.config/Quietlark/config.json", "/home/me/.config/Quietlark/defaults.ini",
          "/home/me/.config/autostart/net.quietlark.app.desktop",
          "/home/me/.local/share/Quietlark/models/active.bin", "/tmp/quietlark.log"}) {
        ASSERT_TRUE(QFile::remove(QString::fromLatin1(path)));
        link(path, "/home/me/thesis");
    }
    link("/home/me/.config/Quietlark/root", "/");
    link("/home/me/.local/share/Quietlark/home", "/home/me");
    link("/tmp/quietlark.endpoint", "/home/me/thesis");
    uninstall();
    expectOthersFiles();
    EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark"));
    EXPECT_FALSE(exists("/tmp/quietlark.log"));
    EXPECT_FALSE(exists("/tmp/quietlark.endpoint"));
}

TEST_F(UninstallTrapsTest, FilesWithASecondName) {
    useProgram();
    ASSERT_EQ(::link("/thesis", "/home/me/.config/Quietlark/thesis"), 0);
    ASSERT_TRUE(QFile::remove(QStringLiteral("/tmp/quietlark.log")));
    ASSERT_EQ(::link("/thesis", "/tmp/quietlark.log"), 0);
    uninstall();
    expectOthersFiles();
    EXPECT_FALSE(exists("/tmp/quietlark.log"));
}

TEST_F(UninstallTrapsTest, OtherFileSystemsInTheFolders) {
    useProgram();
    ASSERT_TRUE(QDir().mkpath(QStringLiteral("/home/me/.local/share/Quietlark/disk")));
    ASSERT_EQ(::mount("/home/me/Documents", "/home/me/.local/share/Quietlark/disk", nullptr,
                      MS_BIND, nullptr),
              0);
    uninstall();
    expectOthersFiles();
    EXPECT_TRUE(exists("/home/me/.local/share/Quietlark/disk/Quietlark/thesis"));
    EXPECT_FALSE(exists("/home/me/.local/share/Quietlark/models"));
    ASSERT_EQ(::umount2("/home/me/.local/share/Quietlark/disk", MNT_DETACH), 0);
}

TEST_F(UninstallTrapsTest, AFileOfTheUsersNamedAsTheEndpointFile) {
    for (const char* path : {"/home/me/thesis", "/home/me/Documents", "/", "/etc/passwords"}) {
        qputenv("QUIETLARK_ENDPOINT_FILE", path);
        useAndUninstall();
    }
}

TEST_F(UninstallTrapsTest, AnEndpointFileElsewhereGoesWithTheRest) {
    qputenv("QUIETLARK_ENDPOINT_FILE", "/home/me/endpoint");
    write(QStringLiteral("/home/me/endpoint"), "local=127.0.0.1:9000\nrtf=3.5\n");
    write("/tmp/quietlark.endpoint");
    useAndUninstall();
    EXPECT_FALSE(exists("/home/me/endpoint"));
    EXPECT_TRUE(exists("/tmp/quietlark.endpoint"));
}

TEST_F(UninstallTrapsTest, AFolderInThePlaceOfAFile) {
    useProgram();
    ASSERT_TRUE(QFile::remove(QStringLiteral("/tmp/quietlark.log")));
    write("/tmp/quietlark.log/thesis");
    write("/tmp/quietlark.endpoint/thesis");
    uninstall();
    EXPECT_TRUE(exists("/tmp/quietlark.log/thesis"));
    EXPECT_TRUE(exists("/tmp/quietlark.endpoint/thesis"));
}

TEST_F(UninstallTrapsTest, ABundleThatIsNotOursAlone) {
    install("/usr");
    install("/home/me");
    install("/opt/other");
    link("/opt/Quietlark", "/opt/other");
    write("/home/me/work/Quietlark/bin/quietlark");
    for (const char* path :
         {"/usr", "/usr/bin/quietlark", "/", "", "/home/me", "/opt", "/opt/", "/opt/other",
          "/opt/Quietlark", "/opt/Quietlark/../other", "/home/me/work/Quietlark", "work"}) {
        installation.path = QString::fromLatin1(path);
        useAndUninstall();
        ASSERT_FALSE(shell.alerts().empty());
        EXPECT_EQ(shell.alerts().back().title,
                  QStringLiteral("Couldn't move Quietlark to the Trash"));
        EXPECT_TRUE(exists("/usr/bin/quietlark"));
        EXPECT_TRUE(exists("/opt/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.config/Quietlark"));
        EXPECT_FALSE(exists("/home/me/.local/share/Trash/files"));
    }
}

TEST_F(UninstallTrapsTest, FurtherPlacesForApplicationsThatAreNone) {
    install("/usr");
    install("/home/me/work/Quietlark");
    for (const char* further : {"", "/", "//", "/usr", "/usr/", "relative", "..", "."}) {
        qputenv("QUIETLARK_APPLICATIONS", further);
        for (const char* path : {"/usr", "/home/me/work/Quietlark", "Quietlark"}) {
            installation.path = QString::fromLatin1(path);
            useAndUninstall();
            EXPECT_TRUE(exists("/usr/bin/quietlark")) << further;
            EXPECT_TRUE(exists("/home/me/work/Quietlark/bin/quietlark")) << further;
        }
    }
    qputenv("QUIETLARK_APPLICATIONS", "/home/me");
    useAndUninstall();
    EXPECT_TRUE(exists("/home/me/work/Quietlark/bin/quietlark"));
    qunsetenv("QUIETLARK_APPLICATIONS");
}

TEST_F(UninstallTrapsTest, AListOfFoldersThatWereNotMadeForIt) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    for (const char* folder : {"/srv/empty", "/empty", "/home/me/empty", "/opt/empty"})
        ASSERT_TRUE(QDir().mkpath(QString::fromLatin1(folder)));
    write(QStringLiteral("/opt/Quietlark/share/quietlark/registered"),
          "/srv/empty/\n/empty/\n../../../\n../empty/\nempty/\n/\n//\n/opt/Quietlark/../empty/\n"
          "/home/me/empty/\n/home/me/thesis\n/etc/passwords\n\n/home/me/\n");
    useAndUninstall();
    EXPECT_FALSE(exists("/opt/Quietlark"));
    for (const char* folder : {"/srv/empty", "/empty", "/home/me/empty", "/opt/empty"})
        EXPECT_TRUE(exists(folder)) << folder;
}

TEST_F(UninstallTrapsTest, AVariableThatNamesAFolderInTheBundle) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    qputenv("XDG_DATA_HOME", "/opt/Quietlark/share");
    write("/opt/Quietlark/share/mail/thesis");
    useAndUninstall();
    EXPECT_TRUE(exists("/opt/Quietlark/share/mail/thesis"));
    EXPECT_FALSE(exists("/opt/Quietlark/share/Quietlark"));
}

TEST_F(UninstallTrapsTest, LinksThatLeadElsewhereAndFilesThatAreNoLinks) {
    installation.path = QStringLiteral("/opt/Quietlark");
    install("/opt/Quietlark");
    write("/home/me/.local/bin/quietlark");
    link("/home/me/.local/share/applications/net.quietlark.app.desktop", "/home/me/thesis");
    useAndUninstall();
    EXPECT_FALSE(exists("/opt/Quietlark"));
    EXPECT_TRUE(exists("/home/me/.local/bin/quietlark"));
    EXPECT_TRUE(exists("/home/me/.local/share/applications/net.quietlark.app.desktop"));
}

}  // namespace
}  // namespace quietlark
