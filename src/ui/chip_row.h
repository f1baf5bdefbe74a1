#pragma once

#include <vector>

#include <QWidget>

#include "hotkeys/hotkey_display.h"

namespace quietlark {

/// The keys of a hotkey side by side, each on a small rounded plate.
class ChipRow final : public QWidget {
    Q_OBJECT

public:
    ChipRow();

    /// Answers whether there is anything to show: not for a spec that does not parse.
    bool setSpec(const QString& spec);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] int chipWidth(const QString& text) const;
    [[nodiscard]] int chipHeight() const;
    [[nodiscard]] int gap() const;

    QStringList m_texts;
};

}  // namespace quietlark
