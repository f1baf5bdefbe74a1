// Copies one thing in several formats and keeps it on the clipboard until it is ended: what an
// office program does when a paragraph with a picture is copied.
#include <cstdio>

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace {

constexpr int pictureBytes = 700000;

/// More than fits into one X11 request, and with every byte value.
QByteArray picture() {
    QByteArray bytes(pictureBytes, '\0');
    for (int index = 0; index < pictureBytes; ++index)
        bytes[index] = static_cast<char>(index % 251);
    return bytes;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    auto* copied = new QMimeData;
    copied->setText(QStringLiteral("three pears"));
    copied->setHtml(QStringLiteral("<p>three <b>pears</b></p>"));
    copied->setData(QStringLiteral("application/x-picture"), picture());
    QGuiApplication::clipboard()->setMimeData(copied);
    std::puts("copied");
    std::fflush(stdout);
    return QGuiApplication::exec();
}
