#include "ui/hotkey_row.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "ui/hotkey_capture_view.h"
#include "ui/page_labels.h"

namespace quietlark {

HotkeyRow::HotkeyRow(AppState& appState, HotkeyCaptureCoordinator& coordinator,
                     const HotkeySetting& setting) {
    auto* field = new HotkeyCaptureView(coordinator, setting.empty, setting.title);
    field->setAccessibleDescription(setting.subtitle);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(fontMetrics().height() / 6);
    texts->addWidget(makeHeading(setting.title));
    texts->addWidget(makeCaption(setting.subtitle));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height());
    layout->addLayout(texts, 1);
    layout->addWidget(field, 0, Qt::AlignVCenter);

    const auto spec = setting.spec;
    field->capture().setSpec(appState.config().*spec);
    connect(&field->capture(), &HotkeyCapture::edited, this, [&appState, spec](const QString& now) {
        Config config = appState.config();
        config.*spec = now;
        appState.setConfig(config);
    });
    connect(&appState, &AppState::configChanged, field,
            [field, spec](const Config& config) { field->capture().setSpec(config.*spec); });
}

QWidget* makeHotkeyRows(AppState& appState, HotkeyCaptureCoordinator& coordinator) {
    auto* rows = new QWidget;
    auto* layout = new QVBoxLayout(rows);
    layout->setContentsMargins({});
    layout->setSpacing(rows->fontMetrics().height() * 3 / 2);
    layout->addWidget(new HotkeyRow(appState, coordinator, HotkeySetting::hold()));
    layout->addWidget(new HotkeyRow(appState, coordinator, HotkeySetting::toggle()));
    layout->addStretch();
    return rows;
}

}  // namespace quietlark
