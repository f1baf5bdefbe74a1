#pragma once

#include <QLabel>

namespace quietlark {

/// A symbol in a colour of the desktop's palette, following it from light to dark. A screen reader
/// passes over one without an accessible name: it only decorates what stands beside it.
class SymbolLabel final : public QLabel {
    Q_OBJECT

public:
    enum class Tone { text, accent, warning, success, failure };

    /// `edge` in points.
    SymbolLabel(QString name, int edge, Tone tone);

    void setName(const QString& name);
    void setTone(Tone tone);

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void draw();
    [[nodiscard]] QColor color() const;

    QString m_name;
    const int m_edge;
    Tone m_tone;
};

}  // namespace quietlark
