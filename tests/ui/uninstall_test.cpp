#include <QMessageBox>
#include <QTimer>

#include "app/app_delegate.h"
#include "fakes/fake_installation.h"
#include "fakes/fake_key_event_source.h"
#include "fakes/fake_privacy_records.h"
#include "fakes/fake_status_item.h"
#include "fakes/fake_user_defaults.h"
#include "platform/linux/removal/linux_own_files.h"
#include "platform/linux/removal/linux_recycler.h"
#include "ui/qt_application_shell.h"
#include "ui/windows_fixture.h"

namespace quietlark {
namespace {

/// From the button of Preferences to the end of the process, with real windows and real files.
class UninstallButtonTest : public WindowsFixture {
protected:
    UninstallButtonTest() {
        files = {at("config/Quietlark/config.json"), ModelFiles(at("data/Quietlark/models")),
                 EndpointFile(at("quietlark.endpoint"))};
        saved(manualRemote());
        installModel();
        installation.path = at("opt/Quietlark");
        installation.roots << at("opt/");
        grantAll();
        write("opt/Quietlark/bin/quietlark");
        write("opt/Quietlark/share/applications/net.quietlark.app.desktop");
        delegate.emplace(state(), AppDelegate::Desktop{statusItem, windows(), shell},
                         AppDelegate::Computer{keyboard,
                                               permissions,
                                               {installation, defaults, loginItem, ownFiles,
                                                privacyRecords, recycler}},
                         notifications, scheduler);
        delegate->applicationDidFinishLaunching();
        settle();
        open(Kind::preferences);
        button("Uninstall Quietlark")->click();
    }
    ~UninstallButtonTest() override {
        delegate.reset();
        closeAll();
    }

    [[nodiscard]] QString at(const char* path) const {
        return directory.filePath(QString::fromLatin1(path));
    }
    void write(const char* path) const {
        QDir().mkpath(QFileInfo(at(path)).path());
        QFile file(at(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    [[nodiscard]] bool exists(const char* path) const { return QFileInfo::exists(at(path)); }

    /// The button of the question or alert on the screen.
    static QAbstractButton* answer(const char* name) {
        const auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        for (QAbstractButton* each : box ? box->buttons() : QList<QAbstractButton*>()) {
            if (each->text() == QString::fromLatin1(name)) return each;
        }
        return nullptr;
    }

    /// The program runs until it ends itself; answers its exit status.
    int runToItsEnd() {
        QTimer computer;
        QObject::connect(&computer, &QTimer::timeout, [this] { settle(); });
        computer.start(0);
        return QCoreApplication::exec();
    }

    QtApplicationShell shell;
    FakeStatusItem statusItem;
    FakeKeyEventSource keyboard;
    FakeInstallation installation;
    FakeUserDefaults defaults;
    FakePrivacyRecords privacyRecords;
    LinuxOwnFiles ownFiles{{at("config"), at("data")}, {directory.path()}, {}};
    LinuxRecycler recycler{{{at("opt/")}, {}, at("no-package")},
                           FreedesktopTrash(at("data")),
                           Registration(directory.path(), {}, {})};
    std::optional<AppDelegate> delegate;
};

TEST_F(UninstallButtonTest, CancelLeavesPreferencesAndEverythingElse) {
    ASSERT_TRUE(answer("Cancel"));
    answer("Cancel")->click();
    settle();
    EXPECT_TRUE(windows().isVisible(Kind::preferences));
    EXPECT_TRUE(exists("config/Quietlark/config.json"));
    EXPECT_TRUE(exists("data/Quietlark/models/active.bin"));
    EXPECT_TRUE(exists("opt/Quietlark/bin/quietlark"));
}

TEST_F(UninstallButtonTest, UninstallRemovesEverythingAndEndsTheProgram) {
    ASSERT_TRUE(answer("Uninstall"));
    QTimer::singleShot(0, [this] { answer("Uninstall")->click(); });
    EXPECT_EQ(runToItsEnd(), 0);
    EXPECT_FALSE(windows().isAnyVisible());
    delegate.reset();
    closeAll();
    EXPECT_FALSE(exists("config/Quietlark"));
    EXPECT_FALSE(exists("data/Quietlark"));
    EXPECT_FALSE(exists("opt/Quietlark"));
    EXPECT_TRUE(exists("data/Trash/files/Quietlark/bin/quietlark"));
}

TEST_F(UninstallButtonTest, ABundleThatStaysIsSaidAndThenTheProgramEnds) {
    write("opt/Quietlark/thesis");
    QString title;
    QTimer::singleShot(0, [this] { answer("Uninstall")->click(); });
    QTimer reader;
    QObject::connect(&reader, &QTimer::timeout, [&] {
        if (!answer("OK")) return;
        title = QApplication::activeModalWidget()->windowTitle();
        answer("OK")->click();
    });
    reader.start(0);
    EXPECT_EQ(runToItsEnd(), 0);
    EXPECT_EQ(title, QStringLiteral("Couldn't move Quietlark to the Trash"));
    EXPECT_FALSE(exists("config/Quietlark"));
    EXPECT_TRUE(exists("opt/Quietlark/thesis"));
}

}  // namespace
}  // namespace quietlark
