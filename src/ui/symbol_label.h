#pragma once

#include <QWidget>

namespace quietlark {

/// A symbol in a colour of the desktop's palette, following it from light to dark.
class SymbolLabel final : public QWidget {
    Q_OBJECT

public:
    enum class Tone { text, accent, warning, success };

    /// `edge` in points.
    SymbolLabel(QString name, int edge, Tone tone);

    void setName(const QString& name);
    void setTone(Tone tone);

    [[nodiscard]] QSize sizeHint() const override { return {m_edge, m_edge}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QColor color() const;

    QString m_name;
    const int m_edge;
    Tone m_tone;
};

}  // namespace quietlark
