#include "platform/x11/keys/paste_target.h"

#include <utility>

#include <QFile>

#include "support/wait.h"

namespace quietlark {

namespace {

constexpr KeyCode letterS = 1;
constexpr KeyCode letterX = 7;
constexpr auto attempt = std::chrono::milliseconds(300);
constexpr int attempts = 60;

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// What editors and terminals have in common: a program of a home of its own, with one window.
class ForeignProgram : public PasteTarget {
protected:
    bool start(XServer& server, const QString& program, const QStringList& arguments) {
        m_server = &server;
        auto environment = server.environment();
        environment.insert(QStringLiteral("HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_home.path());
        environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_home.path());
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QStringLiteral("disabled:"));
        environment.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
        m_program = std::make_unique<ChildProcess>(program, arguments, environment);
        const QByteArray windows =
            xdotool({QStringLiteral("search"), QStringLiteral("--sync"),
                     QStringLiteral("--onlyvisible"), QStringLiteral("--class"), program});
        m_window = QString::fromLatin1(windows.split('\n').value(0));
        xdotool({QStringLiteral("windowfocus"), QStringLiteral("--sync"), m_window});
        return !m_window.isEmpty();
    }

    [[nodiscard]] QByteArray title() const {
        return xdotool({QStringLiteral("getwindowname"), m_window});
    }

    void setAmericanLayout() const {
        m_server->run(QStringLiteral("setxkbmap"), {QStringLiteral("us")});
    }

    [[nodiscard]] QString fileAt(const char* name) const {
        return m_home.filePath(QString::fromLatin1(name));
    }

private:
    QByteArray xdotool(const QStringList& arguments) const {
        return m_server->run(QStringLiteral("xdotool"), arguments);
    }

    XServer* m_server = nullptr;
    QString m_window;
    QTemporaryDir m_home;
    std::unique_ptr<ChildProcess> m_program;
};

class Editor final : public ForeignProgram {
public:
    Editor(QString program, QStringList arguments)
        : m_program(std::move(program)), m_arguments(std::move(arguments)) {}

    bool open(XServer& server, KeySynthesizer& synthesizer) override {
        m_synthesizer = &synthesizer;
        QFile(file()).open(QIODevice::WriteOnly);
        if (!start(server, m_program, m_arguments + QStringList{file()})) return false;
        for (int i = 0; i < attempts; ++i) {
            static_cast<void>(synthesizer.post(letterX, 0));
            if (!saved([this] { return !contentsOf(file()).isEmpty(); })) continue;
            return waitUntil([this] { return !showsChanges(); });
        }
        return false;
    }

    QByteArray contentsEndingWith(const QByteArray& end) override {
        // The keystroke means what the layout says when it is dealt with, and some layouts have no
        // key for saving.
        static_cast<void>(waitUntil([this] { return showsChanges(); }));
        setAmericanLayout();
        const auto arrived = [&] { return contentsOf(file()).trimmed().endsWith(end); };
        for (int i = 0; i < attempts && !saved(arrived); ++i) {
        }
        // The next change shows only once this one does not any more.
        static_cast<void>(waitUntil([this] { return !showsChanges(); }));
        return contentsOf(file());
    }

private:
    [[nodiscard]] QString file() const { return fileAt("text.txt"); }
    [[nodiscard]] bool showsChanges() const { return title().contains('*'); }

    bool saved(const std::function<bool()>& isAsWanted) {
        static_cast<void>(m_synthesizer->post(letterS, modifier::command));
        return waitUntil(isAsWanted, attempt);
    }

    QString m_program;
    QStringList m_arguments;
    KeySynthesizer* m_synthesizer = nullptr;
};

class Terminal final : public ForeignProgram {
public:
    Terminal(QString program, QStringList run)
        : m_program(std::move(program)), m_run(std::move(run)) {}

    bool open(XServer& server, KeySynthesizer& synthesizer) override {
        QFile script(fileAt("reader"));
        if (!script.open(QIODevice::WriteOnly)) return false;
        // Raw, so that what arrives is not kept back until the end of a line.
        script.write("#!/bin/sh\nstty raw -echo\nexec cat >\"$HOME/received\"\n");
        script.close();
        script.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
        if (!start(server, m_program, m_run + QStringList{script.fileName()})) return false;
        for (int i = 0; i < attempts; ++i) {
            static_cast<void>(synthesizer.post(letterX, 0));
            if (waitUntil([this] { return !received().isEmpty(); }, attempt)) return true;
        }
        return false;
    }

    QByteArray contentsEndingWith(const QByteArray& end) override {
        static_cast<void>(waitUntil([&] { return received().endsWith(end); }));
        return received();
    }

private:
    [[nodiscard]] QByteArray received() const { return contentsOf(fileAt("received")); }

    QString m_program;
    QStringList m_run;
};

}  // namespace

std::unique_ptr<PasteTarget> makeEditor(const QString& program, const QStringList& arguments) {
    return std::make_unique<Editor>(program, arguments);
}

std::unique_ptr<PasteTarget> makeTerminal(const QString& program, const QStringList& run) {
    return std::make_unique<Terminal>(program, run);
}

}  // namespace quietlark
