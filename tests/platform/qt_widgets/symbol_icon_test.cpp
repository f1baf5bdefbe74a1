#include "platform/qt_widgets/symbol_icon.h"

#include <QImage>
#include <QStringList>
#include <gtest/gtest.h>

namespace quietlark {
namespace {

/// What the status item and the windows show.
const QStringList symbols{
    QStringLiteral("exclamationmark.triangle"),
    QStringLiteral("arrow.down.circle"),
    QStringLiteral("ellipsis.circle"),
    QStringLiteral("ellipsis.circle.fill"),
    QStringLiteral("exclamationmark.bubble"),
    QStringLiteral("bubble.left"),
    QStringLiteral("bubble.left.fill"),
    QStringLiteral("waveform.path"),
    QStringLiteral("waveform"),
    QStringLiteral("waveform.path.ecg"),
    QStringLiteral("exclamationmark.triangle.fill"),
    QStringLiteral("checkmark.circle.fill"),
    QStringLiteral("xmark.circle.fill"),
    QStringLiteral("largecircle.fill.circle"),
    QStringLiteral("clock.arrow.circlepath"),
    QStringLiteral("circle"),
    QStringLiteral("desktopcomputer"),
    QStringLiteral("network"),
};

class SymbolIconTest : public ::testing::TestWithParam<QString> {
protected:
    static QImage image(const QString& name, int size, const QColor& color = Qt::black) {
        return symbolIcon(name, color)
            .pixmap(size)
            .toImage()
            .convertToFormat(QImage::Format_ARGB32);
    }

    /// Share of the pixels that are inked, half-inked ones counting half.
    static double coverage(const QImage& image) {
        double alpha = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                alpha += image.pixelColor(x, y).alphaF();
        }
        return alpha / (image.width() * image.height());
    }

    static int solidPixels(const QImage& image) {
        int count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                count += image.pixelColor(x, y).alpha() > 250 ? 1 : 0;
        }
        return count;
    }
};

INSTANTIATE_TEST_SUITE_P(EverySymbol, SymbolIconTest,
                         ::testing::ValuesIn(symbols.begin(), symbols.end()), [](const auto& test) {
                             return QString(test.param).replace(u'.', u'_').toStdString();
                         });

TEST_P(SymbolIconTest, ComesInTheSizesOfStatusBars) {
    for (const int size : {16, 22, 24, 32, 48, 64})
        EXPECT_EQ(image(GetParam(), size).size(), QSize(size, size));
}

TEST_P(SymbolIconTest, IsNeitherEmptyNorABlot) {
    for (const int size : {16, 24, 64}) {
        EXPECT_GT(coverage(image(GetParam(), size)), 0.10) << size;
        EXPECT_LT(coverage(image(GetParam(), size)), 0.85) << size;
    }
}

TEST_P(SymbolIconTest, HasStrokesThatFillWholePixelsAtTheSmallestSize) {
    EXPECT_GE(solidPixels(image(GetParam(), 16)), 8);
}

TEST_P(SymbolIconTest, KeepsClearOfTheEdges) {
    const QImage drawn = image(GetParam(), 24);
    const QImage inner = drawn.copy(1, 1, 22, 22);
    EXPECT_GT(coverage(drawn), 0);
    EXPECT_DOUBLE_EQ(coverage(drawn) * 24 * 24, coverage(inner) * 22 * 22);
}

TEST_P(SymbolIconTest, IsDrawnInTheOneColourThatWasAskedFor) {
    const QImage drawn = image(GetParam(), 32, QColor(200, 100, 50));
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            const QColor pixel = drawn.pixelColor(x, y);
            if (pixel.alpha() == 255) {
                ASSERT_EQ(pixel, QColor(200, 100, 50));
            }
        }
    }
}

TEST_P(SymbolIconTest, LooksLikeNoOther) {
    for (const QString& other : symbols) {
        if (other == GetParam()) continue;
        EXPECT_NE(image(GetParam(), 16), image(other, 16)) << other.toStdString();
    }
}

TEST_F(SymbolIconTest, AnUnknownNameHasNoIcon) {
    EXPECT_TRUE(symbolIcon(QStringLiteral("no.such.symbol"), Qt::black).isNull());
}

TEST(RecolouredTest, EveryCurrentColourIsReplaced) {
    EXPECT_EQ(recoloured("<path stroke=\"currentColor\" fill=\"currentColor\"/>", Qt::white),
              "<path stroke=\"#ffffff\" fill=\"#ffffff\"/>");
}

TEST(RecolouredTest, OtherColoursStay) {
    EXPECT_EQ(recoloured("<path fill=\"none\" stroke=\"#123456\"/>", Qt::white),
              "<path fill=\"none\" stroke=\"#123456\"/>");
}

}  // namespace
}  // namespace quietlark
