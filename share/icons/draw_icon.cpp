// draw_icon DRAWING.svg PIXELS PICTURE.png: the drawing as a square picture.

#include <cstdlib>

#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

int main(int argc, char** argv) {
    if (argc != 4) return EXIT_FAILURE;
    QSvgRenderer drawing(QString::fromLocal8Bit(argv[1]));
    const int pixels = QString::fromLocal8Bit(argv[2]).toInt();
    if (!drawing.isValid() || pixels <= 0) return EXIT_FAILURE;
    QImage picture(pixels, pixels, QImage::Format_ARGB32);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    drawing.render(&painter);
    painter.end();
    return picture.save(QString::fromLocal8Bit(argv[3]), "PNG") ? EXIT_SUCCESS : EXIT_FAILURE;
}
