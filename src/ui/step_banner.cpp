#include "ui/step_banner.h"

#include <QPainter>
#include <QStyle>

namespace quietlark {

namespace {

constexpr int gap = 6;  // points
constexpr double otherStepsOpacity = 0.25;

}  // namespace

StepBanner::StepBanner(int totalSteps) : m_totalSteps(totalSteps) {
    setFixedHeight(capsuleHeight);
    setStep(0);
}

void StepBanner::setStep(int step) {
    m_step = step;
    setAccessibleName(tr("Step %1 of %2").arg(step + 1).arg(m_totalSteps));
    update();
}

void StepBanner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const int capsuleWidth = (width() - gap * (m_totalSteps - 1)) / m_totalSteps;
    for (int step = 0; step < m_totalSteps; ++step) {
        QColor color = palette().color(step == m_step ? QPalette::Highlight : QPalette::WindowText);
        if (step != m_step) color.setAlphaF(static_cast<float>(otherStepsOpacity));
        painter.setBrush(color);
        const QRect logical(step * (capsuleWidth + gap), 0, capsuleWidth, capsuleHeight);
        painter.drawRoundedRect(QStyle::visualRect(layoutDirection(), rect(), logical),
                                capsuleHeight / 2.0, capsuleHeight / 2.0);
    }
}

}  // namespace quietlark
