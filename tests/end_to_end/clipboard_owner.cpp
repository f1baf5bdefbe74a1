// Copies one thing in several formats and keeps it on the clipboard until it is ended: what an
// office program does when a paragraph with a picture is copied.
#include <cstdio>

#include <QBuffer>
#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QRandomGenerator>

namespace {

constexpr QSize pictureSize(2000, 1400);

/// Noise, of which a PNG of 8 MB becomes: many times what fits into one X11 request.
QByteArray picture() {
    QImage image(pictureSize, QImage::Format_RGB888);
    QRandomGenerator random(7);
    for (int row = 0; row < image.height(); ++row)
        random.fillRange(reinterpret_cast<quint32*>(image.scanLine(row)), image.bytesPerLine() / 4);
    QByteArray png;
    QBuffer buffer(&png);
    image.save(&buffer, "PNG");
    return png;
}

}  // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    auto* copied = new QMimeData;
    copied->setText(QStringLiteral("three pears"));
    copied->setHtml(QStringLiteral("<p>three <b>pears</b></p>"));
    copied->setData(QStringLiteral("image/png"), picture());
    QGuiApplication::clipboard()->setMimeData(copied);
    std::puts("copied");
    std::fflush(stdout);
    return QGuiApplication::exec();
}
