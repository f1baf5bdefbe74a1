#include "ui/overview.h"

#include <QCoreApplication>
#include <QLabel>
#include <QVBoxLayout>

namespace quietlark {

QStringList overview(const Config& config, const Permissions::Explanations& explanations,
                     const QString& configPath) {
    QStringList sentences;
    if (!config.hotkey.isEmpty())
        sentences << Overview::tr("Hold %1 while you speak.").arg(config.hotkey);
    if (!config.toggleHotkey.isEmpty())
        sentences << Overview::tr("Press %1 to start, and again to stop.").arg(config.toggleHotkey);
    if (std::holds_alternative<Unconfigured>(config.serverMode))
        sentences << Overview::tr("No server is chosen yet.");
    for (const auto& explanation : {explanations.microphone, explanations.inputMonitoring,
                                    explanations.accessibility, explanations.localNetwork}) {
        if (explanation) sentences << *explanation;
    }
    sentences << Overview::tr("The settings are in %1.").arg(configPath);
    return sentences;
}

Overview::Overview(const QStringList& sentences) {
    auto* layout = new QVBoxLayout(this);
    for (const QString& sentence : sentences) {
        auto* label = new QLabel(sentence);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        layout->addWidget(label);
    }
    layout->addStretch();
}

}  // namespace quietlark
