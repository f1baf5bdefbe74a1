#include "ui/server_cards_page.h"

#include <QVBoxLayout>

#include "picker/server_picker_model.h"
#include "picker/server_step.h"

namespace quietlark {

using CardChoice = ServerPickerModel::CardChoice;

ServerCardsPage::ServerCardsPage(ServerPickerModel& model, ServerStep& step)
    : m_model(model),
      m_step(step),
      m_local(new ServerCard(QStringLiteral("desktopcomputer"), tr("On this Mac"))),
      m_network(new ServerCard(QStringLiteral("network"), tr("On the network"))) {
    m_local->setObjectName(QStringLiteral("local"));
    m_network->setObjectName(QStringLiteral("network"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(m_local);
    layout->addWidget(m_network);
    layout->addStretch();

    connect(m_local, &ServerCard::toggled, this, [this](bool isChosen) {
        m_model.setCardSelection(isChosen ? CardChoice::local : CardChoice::network);
    });
    refresh();
}

void ServerCardsPage::refresh() {
    const bool isLocal = m_model.cardSelection() == CardChoice::local;
    ServerCard* const chosen = isLocal ? m_local : m_network;
    chosen->setChecked(true);
    setFocusProxy(chosen);
    m_local->setSubtitle(m_step.localCardCopy());
    m_network->setSubtitle(m_step.networkCardCopy());
}

}  // namespace quietlark
