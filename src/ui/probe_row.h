#pragma once

#include <QWidget>

#include "picker/address_probe.h"

class QLabel;

namespace quietlark {

class SymbolLabel;

/// Says how the check of an address stands. Always as high, so that nothing moves when it speaks.
class ProbeRow final : public QWidget {
    Q_OBJECT

public:
    ProbeRow();

    void setKind(ProbeState::Case kind);

    /// What it says; empty while there is nothing to say.
    [[nodiscard]] QString text() const;

private:
    ProbeState::Case m_kind = ProbeState::Case::idle;
    QWidget* m_busy;
    SymbolLabel* m_symbol;
    QLabel* m_text;
};

}  // namespace quietlark
