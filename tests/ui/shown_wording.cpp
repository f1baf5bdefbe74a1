#include "ui/shown_wording.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

namespace quietlark {

namespace {

/// Gives every text more words, or a word more letters where it is a single one.
class LongerWording final : public QTranslator {
public:
    [[nodiscard]] QString translate(const char* context, const char* source, const char* use,
                                    int n) const override {
        const QString usual = QTranslator::translate(context, source, use, n);
        const QString text = usual.isEmpty() ? QString::fromUtf8(source) : usual;
        const bool hasWords = text.contains(u' ');
        const auto more = (text.size() * 2 + 4) / 5;
        QString filler;
        while (filler.size() < more)
            filler += hasWords && filler.size() % 7 == 0 ? u' ' : u'n';
        return text + filler;
    }
    [[nodiscard]] bool isEmpty() const override { return false; }
};

std::unique_ptr<QTranslator> makeWording(ShownWording::Length length) {
    if (length == ShownWording::Length::longer) return std::make_unique<LongerWording>();
    return std::make_unique<QTranslator>();
}

}  // namespace

ShownWording::ShownWording(Length length) : m_wording(makeWording(length)) {
    EXPECT_TRUE(m_wording->load(QStringLiteral(":/quietlark/wording/linux.qm")));
    QCoreApplication::installTranslator(m_wording.get());
}

ShownWording::~ShownWording() {
    QCoreApplication::removeTranslator(m_wording.get());
}

}  // namespace quietlark
