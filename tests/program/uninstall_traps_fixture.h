#pragma once

#include <array>
#include <memory>

#include <fcntl.h>

#include "app/made_folders.h"
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

/// The uninstaller and the files of a computer on which things are odd. "/" is a directory of the
/// test's own, so that a mistake costs nothing.
class UninstallTrapsFixture : public AppStateFixture {
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
        noteMissingFolders(traces().defaults, traces().files);
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

}  // namespace quietlark
