#include <QCoreApplication>
#include <QTranslator>

#include "program/wording.h"

namespace quietlark {

void useWordingOfThisSystem(QCoreApplication& application) {
    auto* wording = new QTranslator(&application);
    if (wording->load(QStringLiteral(":/quietlark/wording/linux.qm")))
        QCoreApplication::installTranslator(wording);
}

}  // namespace quietlark
