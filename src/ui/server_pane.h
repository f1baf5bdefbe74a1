#pragma once

#include <functional>
#include <memory>

#include <QWidget>

#include "screens/server_pane_model.h"

class QLabel;
class QPushButton;
class QStackedLayout;

namespace quietlark {

class DownloadView;
class ServerPickerPane;
class SymbolLabel;

/// The chosen server in Preferences, and the choice of another.
class ServerPane final : public QWidget {
    Q_OBJECT

public:
    using MakePicker = std::function<ServerPickerPane*()>;

    ServerPane(std::unique_ptr<ServerPaneModel> model, MakePicker makePicker);
    ~ServerPane() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] QWidget* makeSummary();
    [[nodiscard]] QWidget* makeHero();
    [[nodiscard]] QWidget* makeFixUp();
    void beginEditing();
    void endEditing();
    void refresh();

    const std::unique_ptr<ServerPaneModel> m_model;
    const MakePicker m_makePicker;
    SymbolLabel* m_symbol;
    QLabel* m_title;
    QLabel* m_subtitle;
    QWidget* m_fixUp;
    DownloadView* m_download;
    QPushButton* m_change;
    QWidget* m_summary;
    ServerPickerPane* m_picker = nullptr;  ///< while it is shown
    QStackedLayout* m_layout;
};

}  // namespace quietlark
