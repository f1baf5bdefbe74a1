#pragma once

#include <array>
#include <string>

#include <QApplication>
#include <QDir>
#include <QPalette>
#include <QPixmap>
#include <QWidget>
#include <gtest/gtest.h>

#include "ui/shown_wording.h"
#include "ui/window_faults.h"

namespace quietlark {

inline QPalette darkPalette() {
    QPalette palette(QColor(0x35, 0x35, 0x35), QColor(0x2b, 0x2b, 0x2b));
    palette.setColor(QPalette::Base, QColor(0x1e, 0x1e, 0x1e));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x84, 0xe4));
    palette.setColor(QPalette::PlaceholderText, QColor(0x9a, 0x9a, 0x9a));
    return palette;
}

inline QPalette lightPalette() {
    QPalette palette(QColor(0xef, 0xef, 0xef));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x8c, 0xc6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

/// How windows are drawn; one picture of each state for each.
struct Look {
    const char* name;
    QPalette (*palette)();
    Qt::LayoutDirection direction = Qt::LeftToRight;
    ShownWording::Length length = ShownWording::Length::usual;
};

inline constexpr std::array looks{
    Look{"light", lightPalette},
    Look{"dark", darkPalette},
    Look{"mirrored", lightPalette, Qt::RightToLeft},
    Look{"longer", lightPalette, Qt::LeftToRight, ShownWording::Length::longer},
};

inline std::string nameOfLook(const testing::TestParamInfo<Look>& test) {
    return test.param.name;
}

/// Has windows drawn like that as long as it lives.
class LookInForce {
public:
    explicit LookInForce(const Look& look) : m_wording(look.length) {
        QApplication::setPalette(look.palette());
        QApplication::setLayoutDirection(look.direction);
    }
    ~LookInForce() {
        QApplication::setPalette(m_palette);
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }
    LookInForce(const LookInForce&) = delete;
    LookInForce& operator=(const LookInForce&) = delete;

private:
    const QPalette m_palette = QApplication::palette();
    const ShownWording m_wording;
};

/// Draws a window, and looks for what nobody should have to see. The picture is kept as
/// STATE-LOOK.png in the directory that QUIETLARK_PICTURES names, to be looked at; without it the
/// window is only drawn. QT_SCALE_FACTOR=2 draws for a sharper screen.
inline void takePicture(QWidget& window, const QString& state, const Look& look) {
    QApplication::sendPostedEvents();
    const QPixmap picture = window.grab();
    for (const QString& fault : faultsOf(window))
        ADD_FAILURE() << qPrintable(state) << ", " << look.name << ": " << qPrintable(fault);
    EXPECT_FALSE(picture.isNull());
    const QString path = qEnvironmentVariable("QUIETLARK_PICTURES");
    if (path.isEmpty()) return;
    ASSERT_TRUE(QDir().mkpath(path));
    const QString file = QStringLiteral("%1-%2.png").arg(state, QString::fromLatin1(look.name));
    EXPECT_TRUE(picture.save(QDir(path).filePath(file)));
}

}  // namespace quietlark
