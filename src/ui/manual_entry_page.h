#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace quietlark {

class ProbeRow;
class ServerPickerModel;

/// A field for a server's address, and whether one answers there.
class ManualEntryPage final : public QWidget {
    Q_OBJECT

public:
    explicit ManualEntryPage(ServerPickerModel& model);

    void refresh();

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void alignAddress();
    void describeAddress();

    ServerPickerModel& m_model;
    QLineEdit* m_address;
    QLabel* m_examples;
    ProbeRow* m_probe;
};

}  // namespace quietlark
