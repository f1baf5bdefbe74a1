#pragma once

#include <QLabel>

namespace quietlark {

/// How far a wizard has come: a capsule for each step, the present one in the accent colour. A
/// label to those who have it read out.
class StepBanner final : public QLabel {
    Q_OBJECT

public:
    explicit StepBanner(int totalSteps);

    /// From 0.
    void setStep(int step);

    [[nodiscard]] QSize sizeHint() const override { return {1, capsuleHeight}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    static constexpr int capsuleHeight = 4;  // points

    const int m_totalSteps;
    int m_step = 0;
};

}  // namespace quietlark
