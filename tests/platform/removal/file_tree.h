#pragma once

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quietlark {

/// Everything below a directory, sorted; paths relative to it.
inline QStringList listFiles(const QString& directory) {
    QStringList found;
    QDirIterator each(directory,
                      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (each.hasNext())
        found << QDir(directory).relativeFilePath(each.next());
    found.sort();
    return found;
}

/// From now on this process mounts for itself alone, where it may.
inline bool canMount() {
    return ::geteuid() == 0 && ::unshare(CLONE_NEWNS) == 0 &&
           ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// Real files of a test's own, named by their paths below one directory.
class FileTree : public ::testing::Test {
protected:
    [[nodiscard]] QString at(const char* path) const {
        return QDir(m_directory.path()).canonicalPath() + u'/' + QString::fromUtf8(path);
    }

    void write(const char* path, const QByteArray& content = "content") const {
        QDir().mkpath(QFileInfo(at(path)).path());
        QFile file(at(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void makeFolder(const char* path) const { ASSERT_TRUE(QDir().mkpath(at(path))); }

    /// The target may be anything, also nothing.
    void link(const char* path, const QString& target) const {
        QDir().mkpath(QFileInfo(at(path)).path());
        ASSERT_TRUE(QFile::link(target, at(path)));
    }

    void give(const char* path, uid_t user) const {
        ASSERT_EQ(::lchown(QFile::encodeName(at(path)).constData(), user, user), 0);
    }

    /// Whether there is anything of that name, be it a link to nothing.
    [[nodiscard]] bool exists(const char* path) const {
        struct stat status {};
        return ::lstat(QFile::encodeName(at(path)).constData(), &status) == 0;
    }

    [[nodiscard]] QByteArray read(const QString& path) const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Everything below a directory, sorted, in one line.
    [[nodiscard]] std::string listing(const char* path = "") const {
        return listFiles(at(path)).join(u' ').toStdString();
    }

    static bool isRoot() { return ::geteuid() == 0; }

    void mountFileSystem(const char* path) const {
        makeFolder(path);
        ASSERT_EQ(::mount("tmpfs", QFile::encodeName(at(path)).constData(), "tmpfs", 0, nullptr),
                  0);
    }
    /// The same file system once more.
    void mountFolder(const char* source, const char* path) const {
        makeFolder(path);
        ASSERT_EQ(::mount(QFile::encodeName(at(source)).constData(),
                          QFile::encodeName(at(path)).constData(), nullptr, MS_BIND, nullptr),
                  0);
    }
    void unmount(const char* path) const {
        ASSERT_EQ(::umount2(QFile::encodeName(at(path)).constData(), MNT_DETACH), 0);
    }

private:
    QTemporaryDir m_directory;
};

}  // namespace quietlark
