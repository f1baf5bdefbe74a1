#include "ui/server_picker_footer.h"

#include <QHBoxLayout>
#include <QPushButton>

#include "picker/server_picker_model.h"
#include "ui/page_labels.h"

namespace quietlark {

namespace {

using WayOut = ServerPickerModel::WayOut;

QString label(WayOut wayOut) {
    switch (wayOut) {
        case WayOut::none:
            return {};
        case WayOut::back:
            return ServerPickerFooter::tr("Back");
        case WayOut::finishLater:
            return ServerPickerFooter::tr("Finish later");
        case WayOut::cancel:
            return ServerPickerFooter::tr("Cancel");
    }
    return {};
}

}  // namespace

ServerPickerFooter::ServerPickerFooter(ServerPickerModel& model)
    : m_model(model),
      m_back(new QPushButton(tr("Back"))),
      m_leave(new QPushButton),
      m_connect(new QPushButton(tr("Connect"))) {
    m_back->setObjectName(QStringLiteral("back"));
    m_leave->setObjectName(QStringLiteral("leave"));
    m_connect->setObjectName(QStringLiteral("connect"));
    // Return is the button's own while it has the focus, whatever window this is part of.
    m_back->setAutoDefault(true);
    m_leave->setAutoDefault(true);
    for (QPushButton* button : {m_back, m_connect})
        giveAir(*button);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_back);
    layout->addWidget(m_leave);
    layout->addStretch();
    layout->addWidget(m_connect);

    connect(m_back, &QPushButton::clicked, this, &ServerPickerFooter::wentBack);
    connect(m_leave, &QPushButton::clicked, &m_model, &ServerPickerModel::leave);
    connect(m_connect, &QPushButton::clicked, &m_model, &ServerPickerModel::advance);
    connect(&m_model, &ServerPickerModel::changed, this, &ServerPickerFooter::refresh);
    refresh();
}

void ServerPickerFooter::offerWayBack() {
    m_offersWayBack = true;
    refresh();
}

void ServerPickerFooter::refresh() {
    // Further on, the model has a way back of its own.
    m_back->setVisible(m_offersWayBack && m_model.phase() == ServerPickerModel::Phase::cards);
    const WayOut wayOut = m_model.wayOut();
    m_leave->setText(label(wayOut));
    giveAir(*m_leave);
    m_leave->setVisible(wayOut != WayOut::none);
    m_connect->setEnabled(m_model.canConnect());
}

}  // namespace quietlark
