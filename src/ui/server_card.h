#pragma once

#include <QRadioButton>
#include <QString>

namespace quietlark {

/// One of several ways to go, of which one is chosen: a symbol, a title and a sentence on a card.
/// Behaves as the radio button that it is.
class ServerCard final : public QRadioButton {
    Q_OBJECT

public:
    ServerCard(QString symbol, const QString& title);

    [[nodiscard]] const QString& subtitle() const { return m_subtitle; }
    void setSubtitle(const QString& subtitle);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    /// Every point of the card is the button.
    [[nodiscard]] bool hitButton(const QPoint& point) const override;

private:
    /// Where the parts stand on a card of that size, as read from left to right.
    struct Places {
        QRect mark, symbol, title, subtitle;
    };

    [[nodiscard]] Places places(const QSize& size) const;
    [[nodiscard]] QFont titleFont() const;
    [[nodiscard]] int em() const;
    [[nodiscard]] int markEdge() const;
    [[nodiscard]] int symbolEdge() const;
    void drawFrame(QPainter& painter) const;
    void drawText(QPainter& painter, const Places& at) const;

    const QString m_symbol;
    QString m_subtitle;
};

}  // namespace quietlark
