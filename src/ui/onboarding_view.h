#pragma once

#include <memory>

#include <QWidget>

#include "screens/done_step_model.h"
#include "screens/onboarding_model.h"

class QPushButton;
class QStackedWidget;

namespace quietlark {

class PermissionRowsView;
class ReturnKey;
class ServerPickerPane;
class StepBanner;

/// The wizard of the first run. Return goes on, wherever the focus is, when the step allows it.
class OnboardingView final : public QWidget {
    Q_OBJECT

public:
    /// What the steps are made of; the widgets become the view's.
    struct Parts {
        std::unique_ptr<OnboardingModel> model;
        std::unique_ptr<DoneStepModel> done;
        ServerPickerPane* picker;
        QWidget* hotkeyRows;
        ModelDownloader& downloader;  ///< must outlive the view
    };

    explicit OnboardingView(Parts parts);
    ~OnboardingView() override;

Q_SIGNALS:
    void finished();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void addPages(ServerPickerPane* picker, QWidget* hotkeyRows, ModelDownloader& downloader);
    [[nodiscard]] QWidget* makeFooter();
    void advance();
    void refresh();
    void focusStep();
    void focusNext();
    void showStep(int step);

    const std::unique_ptr<OnboardingModel> m_model;
    const std::unique_ptr<DoneStepModel> m_done;
    StepBanner* m_banner;
    QStackedWidget* m_pages;
    PermissionRowsView* m_permissionRows;
    QWidget* m_footer;
    QPushButton* m_back;
    QPushButton* m_next;
    std::unique_ptr<ReturnKey> m_returnKey;
};

}  // namespace quietlark
