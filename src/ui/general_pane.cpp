#include "ui/general_pane.h"

#include <utility>

#include <QCheckBox>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/page_labels.h"

namespace quietlark {

GeneralPane::GeneralPane(std::unique_ptr<GeneralPaneModel> model) : m_model(std::move(model)) {
    auto* launch = new QCheckBox(tr("Launch at login"));
    launch->setChecked(m_model->launchAtLogin());
    const QString blurb =
        tr("Stops the server, deletes the model and settings, revokes permissions (admin password "
           "required), and moves the app to the Trash.");
    QPushButton* uninstall = makeButton(tr("Uninstall Quietlark"));
    uninstall->setAccessibleDescription(blurb);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(fontMetrics().height() / 2);
    layout->addWidget(launch);
    layout->addSpacing(fontMetrics().height());
    layout->addWidget(uninstall, 0, Qt::AlignLeading);
    layout->addWidget(makeCaption(blurb));
    layout->addStretch();
    setFocusProxy(launch);

    connect(launch, &QCheckBox::toggled, m_model.get(), &GeneralPaneModel::setLaunchAtLogin);
    connect(m_model.get(), &GeneralPaneModel::launchAtLoginChanged, launch, &QCheckBox::setChecked);
    connect(uninstall, &QPushButton::clicked, m_model.get(), &GeneralPaneModel::uninstall);
}

}  // namespace quietlark
