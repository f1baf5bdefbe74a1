#pragma once

#include <QWidget>

class QStackedWidget;

namespace quietlark {

class ManualEntryPage;
class ServerCardsPage;
class ServerListPage;
class ServerPickerModel;
class ServerStep;

/// Where to transcribe: the page of the phase that the choice is in.
class ServerStepView final : public QWidget {
    Q_OBJECT

public:
    /// Both must outlive the view.
    ServerStepView(ServerPickerModel& model, ServerStep& step);
    ~ServerStepView() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void refresh();
    [[nodiscard]] QWidget* page() const;

    ServerPickerModel& m_model;
    ServerStep& m_step;
    QStackedWidget* m_pages;
    ServerCardsPage* m_cards;
    ServerListPage* m_list;
    ManualEntryPage* m_manual;
};

}  // namespace quietlark
