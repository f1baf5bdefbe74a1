#include "ui/app_window.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QShowEvent>
#include <QVBoxLayout>

namespace quietlark {

namespace {

/// What a window manager puts around a window, as far as can be guessed before it has done so.
constexpr QSize usualFrame(8, 40);  // points

}  // namespace

AppWindow::AppWindow(QWidget* content, const WindowStyle& style, int margin)
    : m_usualSize(style.contentSize), m_scroll(new QScrollArea) {
    setWindowTitle(style.title);
    setWindowFlag(Qt::WindowStaysOnTopHint, style.isFloating);
    setWindowFlag(Qt::WindowMaximizeButtonHint, false);

    auto* page = new QWidget;
    auto* pageLayout = new QVBoxLayout(page);
    pageLayout->setContentsMargins(margin, margin, margin, margin);
    pageLayout->addWidget(content);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setWidget(page);
    m_scroll->viewport()->installEventFilter(this);
    setCentralWidget(m_scroll);
    setFixedSize(sizeFor(userScreen()));
}

bool AppWindow::eventFilter(QObject*, QEvent* event) {
    // The content has changed what it needs.
    if (event->type() != QEvent::LayoutRequest) return false;
    if (isVisible())
        // A window that breathes distracts.
        setFixedSize(sizeFor(*screen()).expandedTo(size()));
    else
        setFixedSize(sizeFor(userScreen()));
    return false;
}

void AppWindow::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) {
        const QScreen& screen = userScreen();
        setFixedSize(sizeFor(screen));
        QRect place(QPoint(), size());
        place.moveCenter(screen.availableGeometry().center());
        move(place.topLeft());
    }
    QMainWindow::showEvent(event);
}

QSize AppWindow::sizeFor(const QScreen& screen) const {
    return neededSize().boundedTo(screen.availableGeometry().size() - usualFrame);
}

QSize AppWindow::neededSize() const {
    const QWidget& page = *m_scroll->widget();
    page.layout()->activate();
    const QSize size = page.minimumSizeHint().expandedTo(m_usualSize);
    return size.expandedTo({0, page.heightForWidth(size.width())});
}

const QScreen& AppWindow::userScreen() const {
    const QScreen* const screen = QGuiApplication::screenAt(QCursor::pos());
    return screen ? *screen : *QGuiApplication::primaryScreen();
}

}  // namespace quietlark
