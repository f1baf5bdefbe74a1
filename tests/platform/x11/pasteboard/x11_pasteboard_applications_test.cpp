#include <ostream>

#include <QFile>
#include <QTemporaryDir>

#include "platform/x11/pasteboard/x11_pasteboard_fixture.h"

namespace quietlark {
namespace {

struct Editor {
    const char* name;
    QStringList arguments;

    friend void PrintTo(const Editor& editor, std::ostream* stream) { *stream << editor.name; }
};

/// Real editors, with the toolkits that most programs are made with.
class X11PasteboardApplicationsTest : public X11PasteboardTest,
                                      public testing::WithParamInterface<Editor> {
protected:
    void editorShows(const char* text) {
        const QString path = m_home.filePath(QStringLiteral("note.txt"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();

        auto environment = server.environment();
        environment.insert(QStringLiteral("HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
        environment.insert(QStringLiteral("GSETTINGS_BACKEND"), QStringLiteral("memory"));
        environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
        m_editor.emplace(QString::fromLatin1(GetParam().name),
                         GetParam().arguments + QStringList{path}, environment);
        const QByteArray window = windowNamed("note.txt");
        xdotool(
            {QStringLiteral("windowfocus"), QStringLiteral("--sync"), QString::fromLatin1(window)});
    }

    /// Waits for a window whose title has this pattern in it.
    QByteArray windowNamed(const char* pattern) {
        return xdotool({QStringLiteral("search"), QStringLiteral("--sync"),
                        QStringLiteral("--onlyvisible"), QStringLiteral("--name"),
                        QString::fromLatin1(pattern)})
            .split('\n')
            .front();
    }

    void press(const QStringList& keys) { xdotool(QStringList{QStringLiteral("key")} + keys); }

    /// Selects all that the editor shows and copies it, until that is what a snapshot has.
    bool copiesAll(const QByteArray& expected) {
        return waitUntil([&] {
            press({QStringLiteral("ctrl+a"), QStringLiteral("ctrl+c")});
            const auto read = item();
            return std::ranges::any_of(read, [&](const CapturedType& captured) {
                return captured.type == "UTF8_STRING" && captured.data == expected;
            });
        });
    }

private:
    QByteArray xdotool(const QStringList& arguments) {
        return server.run(QStringLiteral("xdotool"), arguments);
    }

    QTemporaryDir m_home;
    std::optional<ChildProcess> m_editor;
};

TEST_P(X11PasteboardApplicationsTest, TheTextIsPastedAndTheCopyComesBack) {
    editorShows("copied");
    ASSERT_TRUE(copiesAll("copied"));
    const auto before = dictate(QStringLiteral("dictated"));
    press({QStringLiteral("ctrl+v")});
    restore(before);

    EXPECT_FALSE(windowNamed("^[*]").isEmpty());
    EXPECT_EQ(ClipboardReader(server).text(), "copied");
    EXPECT_TRUE(copiesAll("dictated"));
}

INSTANTIATE_TEST_SUITE_P(Editors, X11PasteboardApplicationsTest,
                         testing::Values(Editor{"featherpad", {QStringLiteral("--standalone")}},
                                         Editor{"mousepad", {QStringLiteral("--disable-server")}}),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
}  // namespace quietlark
