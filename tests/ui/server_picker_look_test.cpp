#include <algorithm>
#include <cmath>
#include <functional>

#include <QAccessible>
#include <QImage>

#include "ui/contrast.h"
#include "ui/ink.h"
#include "ui/look.h"
#include "ui/picker_view_fixture.h"
#include "ui/server_list_model.h"

namespace quietlark {
namespace {

/// Where something other than the ground is drawn in that part of a widget, in its coordinates. The
/// ground is what the part's first pixel has.
QRect inkIn(QWidget& widget, const QRect& part) {
    const QImage image = widget.grab(part).toImage();
    const auto scale = image.devicePixelRatio();
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != image.pixel(0, 0)) ink |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(ink.topLeft() / scale, ink.size() / scale).toRect().translated(part.topLeft());
}

/// The choice of a server as it looks, light, dark and mirrored.
class ServerPickerLookTest : public PickerViewFixture, public testing::WithParamInterface<Look> {
protected:
    ~ServerPickerLookTest() override { close(); }

    [[nodiscard]] bool isMirrored() const { return GetParam().direction == Qt::RightToLeft; }

    /// Does the same on every page of the choice.
    void onEveryPage(const std::function<void()>& check) {
        publish("Fast", "20");
        publish("A server whose name is as long as a name of a server can be, 63", "5");
        for (const Phase phase : {Phase::cards, Phase::remoteList, Phase::manualEntry}) {
            view();
            model().setPhase(phase);
            layOut();
            check();
        }
        withdraw("Fast");
        withdraw("A server whose name is as long as a name of a server can be, 63");
        model().setPhase(Phase::remoteList);
        layOut();
        check();
    }

    template <typename Widget>
    QList<Widget*> visible() {
        QList<Widget*> all = view().findChildren<Widget*>();
        all.removeIf([](const Widget* widget) { return !widget->isVisible(); });
        return all;
    }

    /// The part of that width at the side at which lines begin, or else at the other one.
    [[nodiscard]] QRect side(const QRect& whole, int width, bool whereLinesBegin) const {
        const QRect left(whole.left(), whole.top(), width, whole.height());
        return whereLinesBegin == isMirrored() ? left.translated(whole.width() - width, 0) : left;
    }

private:
    /// As large as a window makes it that adapts to what is in it.
    void layOut() {
        const QSize least = view().size().expandedTo(view().minimumSizeHint());
        view().resize(least.expandedTo({0, view().heightForWidth(least.width())}));
        QApplication::processEvents();
    }

    const LookInForce m_look{GetParam()};
};

TEST_P(ServerPickerLookTest, EveryLineBeginsWhereThePageDoes) {
    constexpr int bearing = 4;  // what a letter may keep free beside it
    onEveryPage([&] {
        for (QLabel* label : visible<QLabel>()) {
            if (label->text().isEmpty() || label->alignment().testFlag(Qt::AlignHCenter)) continue;
            const QRect ink = inkIn(*label, label->rect());
            const int gap = isMirrored() ? label->rect().right() - ink.right() : ink.left();
            EXPECT_LE(gap, bearing) << label->text().toStdString();
        }
        for (QLineEdit* field : visible<QLineEdit>()) {
            for (const char* typed : {"", "box:8001"}) {
                field->setText(text(typed));
                const QRect inside = field->rect().adjusted(4, 4, -4, -4);
                const QRect ink = inkIn(*field, side(inside, inside.width() / 2, true));
                EXPECT_FALSE(ink.isEmpty()) << typed;
                const QRect far = side(inside, inside.width() / 4, false);
                EXPECT_TRUE(*typed != '\0' || inkIn(*field, far).isEmpty());
            }
        }
    });
}

TEST_P(ServerPickerLookTest, TheMarksStandWhereTheLinesBegin) {
    view();
    const int em = view().fontMetrics().height();
    const QRect inside = card("network").rect().adjusted(em / 2, em / 2, -em / 2, -em / 2);
    EXPECT_FALSE(inkIn(card("network"), side(inside, 2 * em, true)).isEmpty());
    EXPECT_TRUE(inkIn(card("network"), side(inside, 2 * em, false)).isEmpty());
    publish("A");
    publish("B");
    model().setPhase(Phase::remoteList);
    QWidget& rows = *list().viewport();
    // The first row has the focus, which is drawn all over it.
    const QRect row = list().visualRect(list().model()->index(1, 0)).adjusted(2, 2, -2, -2);
    EXPECT_FALSE(inkIn(rows, side(row, 2 * em, true)).isEmpty());
    EXPECT_TRUE(inkIn(rows, side(row, 2 * em, false)).isEmpty());
}

TEST_P(ServerPickerLookTest, EveryTextHasItsRoomAtEveryTextSize) {
    const QFont usual = QApplication::font();
    for (const double size : {1.0, 1.25, 1.5, 2.0}) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * size);
        QApplication::setFont(font);
        onEveryPage([&] {
            for (const QLabel* label : visible<QLabel>())
                EXPECT_GE(label->height(), label->heightForWidth(label->width()))
                    << label->text().toStdString() << " at " << size;
            for (const QAbstractButton* each : visible<QAbstractButton>()) {
                EXPECT_GE(each->width(), each->minimumSizeHint().width());
                EXPECT_GE(each->height(), each->hasHeightForWidth()
                                              ? each->heightForWidth(each->width())
                                              : each->sizeHint().height())
                    << each->text().toStdString() << " at " << size;
            }
        });
        close();
        dropModel();
    }
    QApplication::setFont(usual);
}

TEST_P(ServerPickerLookTest, EverythingThatTakesTheFocusHasAName) {
    onEveryPage([this] {
        for (QWidget* widget : visible<QWidget>()) {
            if (widget->focusPolicy() == Qt::NoFocus || !widget->isEnabled()) continue;
            const auto* const seen = QAccessible::queryAccessibleInterface(widget);
            EXPECT_FALSE(seen->text(QAccessible::Name).isEmpty())
                << widget->metaObject()->className();
        }
    });
}

TEST_P(ServerPickerLookTest, WhatIsQuietCanStillBeRead) {
    const QPalette palette = QApplication::palette();
    EXPECT_GE(contrast(secondaryText(palette), palette.color(QPalette::Base)), 4.5);
    EXPECT_GE(contrast(secondaryText(palette), palette.color(QPalette::Window)), 4.5);
}

TEST_P(ServerPickerLookTest, TheCardWithTheKeyboardStandsOut) {
    view();
    ServerCard& focused = card("local");
    ASSERT_TRUE(focused.hasFocus());
    const QImage image = focused.grab().toImage();
    const double scale = image.devicePixelRatio();
    const int middle = image.height() / 2;
    const QColor window = QApplication::palette().color(QPalette::Window);
    EXPECT_GE(contrast(image.pixelColor(static_cast<int>(scale), middle), window), 3);
}

TEST_P(ServerPickerLookTest, AtTwiceTheTextSizeAHintIsWholeBesideALongName) {
    const QFont usual = QApplication::font();
    QFont large = usual;
    large.setPointSizeF(usual.pointSizeF() * 2);
    QApplication::setFont(large);
    const QString longName = QString(60, u'x');
    publish(longName.toUtf8().constData(), "5");
    showList();
    // Longer words at twice the size leave a name no room in the usual window.
    if (GetParam().length == ShownWording::Length::longer) view().resize(760, 360);
    publish("y", "5");
    const auto hintOf = [this](int row) {
        const QRect whole = list().visualRect(list().model()->index(row, 0));
        const QString hint =
            list().model()->index(row, 0).data(ServerListModel::hintRole).toString();
        const int width = list().fontMetrics().horizontalAdvance(hint);
        const QRect far = side(whole, width + list().fontMetrics().height() / 2, false);
        return list().viewport()->grab(far.adjusted(4, 2, -4, -2)).toImage();
    };
    // Neither row is the one with the focus, which has another ground.
    publish("z", "5");
    list().setCurrentIndex(list().model()->index(2, 0));
    EXPECT_EQ(hintOf(0), hintOf(1));
    close();
    QApplication::setFont(usual);
}

INSTANTIATE_TEST_SUITE_P(Looks, ServerPickerLookTest, testing::ValuesIn(looks), nameOfLook);

}  // namespace
}  // namespace quietlark
