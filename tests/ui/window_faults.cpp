#include "ui/window_faults.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>

#include "ui/chip_row.h"
#include "ui/contrast.h"
#include "ui/server_card.h"
#include "ui/server_list_model.h"

namespace quietlark {

namespace {

QString nameOf(const QWidget& widget) {
    QString text = widget.accessibleName();
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) text = label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) text = button->text();
    return QStringLiteral("%1 \"%2\"")
        .arg(QString::fromLatin1(widget.metaObject()->className())
                 .remove(QStringLiteral("quietlark::")),
             text.left(60));
}

/// Parts of these are the toolkit's business.
bool isWhole(const QWidget& widget) {
    return qobject_cast<const QLineEdit*>(&widget) ||
           qobject_cast<const QAbstractItemView*>(&widget) ||
           qobject_cast<const QPlainTextEdit*>(&widget) || qobject_cast<const QTabBar*>(&widget) ||
           qobject_cast<const QScrollBar*>(&widget);
}

/// What the user sees of the window, from the outside in.
void collect(QWidget& widget, QList<QWidget*>& seen) {
    if (!widget.isVisible()) return;
    seen << &widget;
    if (isWhole(widget)) return;
    for (QObject* child : widget.children()) {
        if (auto* part = qobject_cast<QWidget*>(child); part && !part->isWindow())
            collect(*part, seen);
    }
}

int widestWord(const QFontMetrics& metrics, const QString& text) {
    int widest = 0;
    for (const QString& word : text.split(u' '))
        widest = std::max(widest, metrics.horizontalAdvance(word));
    return widest;
}

/// What the widget must have for all of its text to show.
QSize roomFor(const QWidget& widget) {
    const QFontMetrics metrics = widget.fontMetrics();
    if (const auto* label = qobject_cast<const QLabel*>(&widget); label && !label->text().isEmpty())
        return label->wordWrap() ? QSize(widestWord(metrics, label->text()),
                                         label->heightForWidth(label->width()))
                                 : label->sizeHint();
    if (const auto* card = qobject_cast<const ServerCard*>(&widget)) {
        QFont bold = card->font();
        bold.setBold(true);
        // The title has one line, beside a mark and a symbol.
        return {QFontMetrics(bold).horizontalAdvance(card->text()) + 4 * metrics.height() + 48,
                card->heightForWidth(card->width())};
    }
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget))
        return {metrics.horizontalAdvance(field->placeholderText()), metrics.height()};
    if (const auto* box = qobject_cast<const QPlainTextEdit*>(&widget))
        return metrics
            .boundingRect(box->viewport()->rect().adjusted(4, 4, -4, -4), Qt::TextWordWrap,
                          box->placeholderText())
            .size();
    if (const auto* list = qobject_cast<const QAbstractItemView*>(&widget)) {
        int widestHint = 0;
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            const QString hint =
                list->model()->index(row, 0).data(ServerListModel::hintRole).toString();
            widestHint = std::max(widestHint, metrics.horizontalAdvance(hint));
        }
        // The name gives way, but not beyond the middle.
        return {2 * widestHint + 2 * metrics.height(), 3 * metrics.height()};
    }
    const bool isSized = qobject_cast<const QAbstractButton*>(&widget) ||
                         qobject_cast<const QTabBar*>(&widget) ||
                         qobject_cast<const ChipRow*>(&widget);
    return isSized ? widget.sizeHint() : QSize();
}

bool isEasyToRead(const QWidget& widget) {
    const auto* label = qobject_cast<const QLabel*>(&widget);
    if (!label || label->text().isEmpty() || !label->isEnabled()) return true;
    const QPalette& palette = label->palette();
    return contrast(palette.color(QPalette::WindowText), palette.color(QPalette::Window)) >= 4.5;
}

QStringList faultsOfLayout(const QList<QWidget*>& seen) {
    QStringList faults;
    for (const QWidget* widget : seen) {
        const QSize room = roomFor(*widget);
        if (room.expandedTo(widget->size()) != widget->size())
            faults << QStringLiteral("%1 needs %2 x %3 and has %4 x %5")
                          .arg(nameOf(*widget))
                          .arg(room.width())
                          .arg(room.height())
                          .arg(widget->width())
                          .arg(widget->height());
        if (!isEasyToRead(*widget)) faults << nameOf(*widget) + QStringLiteral(" is hard to read");
        if (widget->isWindow()) continue;
        if (!widget->parentWidget()->rect().contains(widget->geometry()))
            faults << nameOf(*widget) + QStringLiteral(" sticks out of ") +
                          nameOf(*widget->parentWidget());
        for (const QWidget* other : seen) {
            const bool isNeighbour = other < widget && !other->isWindow() &&
                                     other->parentWidget() == widget->parentWidget();
            if (isNeighbour && other->geometry().intersects(widget->geometry()))
                faults << nameOf(*widget) + QStringLiteral(" overlaps ") + nameOf(*other);
        }
    }
    return faults;
}

/// Of several radio buttons the Tab key leads to the chosen one, or to the one that had the focus
/// last, and the arrow keys to the others.
bool isTabStop(const QWidget& widget) {
    const bool takesTab = widget.focusPolicy() & Qt::TabFocus;
    if (!widget.isEnabled() || !takesTab || widget.focusProxy()) return false;
    const auto* radio = qobject_cast<const QRadioButton*>(&widget);
    if (!radio || radio->isChecked()) return true;
    const auto others = radio->parentWidget()->findChildren<QRadioButton*>();
    return std::ranges::none_of(others, [](const QRadioButton* other) {
        return other->isChecked() && (other->focusPolicy() & Qt::TabFocus);
    });
}

/// What Return does where the focus is now: at most one button may look as if it would be clicked,
/// and where that button or another that takes the key has the focus, it is that one.
QStringList faultsOfDefault(const QList<QWidget*>& seen) {
    QList<const QPushButton*> marked;
    QStringList faults;
    for (const QWidget* widget : seen) {
        const auto* button = qobject_cast<const QPushButton*>(widget);
        if (!button || !button->isEnabled()) continue;
        if (button->isDefault()) marked << button;
        if (button->hasFocus() && button->autoDefault() && !button->isDefault())
            faults << nameOf(*button) + QStringLiteral(" takes Return and is not marked");
    }
    for (qsizetype i = 1; i < marked.size(); ++i)
        faults << nameOf(*marked[i]) + QStringLiteral(" is default beside ") + nameOf(*marked[0]);
    return faults;
}

QStringList faultsOfFocus(QWidget& window, const QList<QWidget*>& seen) {
    QList<QWidget*> stops;
    std::ranges::copy_if(seen, std::back_inserter(stops),
                         [](const QWidget* widget) { return isTabStop(*widget); });
    if (stops.isEmpty()) return {};
    if (!QTest::qWaitForWindowActive(&window)) return {QStringLiteral("it is not active")};
    QWidget* const before = window.focusWidget();
    const auto top = [&window](const QWidget* widget) {
        return widget->mapTo(&window, QPoint()).y();
    };
    (*std::ranges::min_element(stops, {}, top))->setFocus();
    QStringList faults;
    QList<QWidget*> reached;
    for (qsizetype presses = 0; presses < stops.size(); ++presses) {
        QWidget* const now = QApplication::focusWidget();
        if (!now) return {QStringLiteral("the focus is nowhere")};
        if (!reached.isEmpty() && top(now) + now->height() <= top(reached.last()))
            faults << nameOf(*now) + QStringLiteral(" comes late, after ") +
                          nameOf(*reached.last());
        reached << now;
        faults << faultsOfDefault(seen);
        QTest::keyClick(now, Qt::Key_Tab);
    }
    if (QApplication::focusWidget() != reached.first())
        faults << nameOf(*reached.first()) + QStringLiteral(" is not reached again");
    for (const QWidget* stop : stops) {
        if (!reached.contains(stop)) faults << nameOf(*stop) + QStringLiteral(" is not reached");
    }
    if (before) before->setFocus();
    return faults;
}

bool isContainer(QAccessible::Role role) {
    constexpr std::array roles{QAccessible::Window, QAccessible::LayeredPane,
                               QAccessible::PageTabList, QAccessible::ScrollBar, QAccessible::Pane};
    return std::ranges::find(roles, role) != roles.end();
}

QStringList faultsForScreenReaders(const QList<QWidget*>& seen) {
    QStringList faults;
    for (QWidget* widget : seen) {
        // The toolkit's own parts of a message box.
        if (widget->objectName().startsWith(QLatin1String("qt_"))) continue;
        const QAccessibleInterface* const told = QAccessible::queryAccessibleInterface(widget);
        const QAccessible::Role role = told ? told->role() : QAccessible::NoRole;
        // What only holds others together is passed over.
        const bool isPassedOver = role == QAccessible::NoRole || role == QAccessible::Client;
        const bool takesFocus = widget->focusPolicy() != Qt::NoFocus && !widget->focusProxy();
        const bool isNamed = told && !told->text(QAccessible::Name).isEmpty();
        if (isPassedOver && (takesFocus || !widget->accessibleName().isEmpty()))
            faults << nameOf(*widget) + QStringLiteral(" has no role");
        else if (!isPassedOver && !isNamed && !isContainer(role))
            faults << nameOf(*widget) + QStringLiteral(" has no name");
    }
    return faults;
}

}  // namespace

QStringList faultsOf(QWidget& window) {
    QList<QWidget*> seen;
    collect(window, seen);
    return faultsOfLayout(seen) + faultsForScreenReaders(seen) + faultsOfFocus(window, seen);
}

}  // namespace quietlark
