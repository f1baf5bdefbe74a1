#pragma once

#include <QWidget>

#include "screens/done_step_model.h"

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace quietlark {

class DownloadView;
class SymbolLabel;

/// The last step of the onboarding. Looks at the server while it is shown.
class DoneStepView final : public QWidget {
    Q_OBJECT

public:
    /// Both must outlive the view.
    DoneStepView(DoneStepModel& model, ModelDownloader& downloader);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();

    DoneStepModel& m_model;
    SymbolLabel* m_symbol;
    QWidget* m_busy;
    QLabel* m_title;
    QLabel* m_text;
    QLabel* m_hint;
    DownloadView* m_download;
    QPushButton* m_settings;
    QPlainTextEdit* m_trial;
    QLabel* m_note;
};

}  // namespace quietlark
