#pragma once

#include <array>
#include <functional>
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
    /// What the steps are made of. Each is made when it is first shown, since the wizard is opened
    /// with the program; the widgets become the view's.
    struct Parts {
        std::unique_ptr<OnboardingModel> model;
        std::unique_ptr<DoneStepModel> done;
        std::function<ServerPickerPane*()> makePicker;
        std::function<QWidget*()> makeHotkeyRows;
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
    [[nodiscard]] QWidget* makeStep(int step);
    [[nodiscard]] QWidget* makeServerStep();
    [[nodiscard]] QWidget* makePermissionsStep();
    [[nodiscard]] QWidget* makeFooter();
    void advance();
    void refresh();
    [[nodiscard]] bool refreshPermissions();
    void focusStep();
    void focusNext();
    void showStep(int step);

    const Parts m_parts;
    StepBanner* m_banner;
    QStackedWidget* m_pages;
    std::array<QWidget*, OnboardingModel::totalSteps> m_steps{};  ///< those that have been shown
    PermissionRowsView* m_permissionRows = nullptr;               ///< with its step
    QWidget* m_footer;
    QPushButton* m_back;
    QPushButton* m_next;
    std::unique_ptr<ReturnKey> m_returnKey;
};

}  // namespace quietlark
