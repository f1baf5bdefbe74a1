#pragma once

#include <functional>
#include <utility>

#include <QDBusAbstractAdaptor>
#include <QStringList>
#include <QVariantMap>

namespace quietlark {

/// org.freedesktop.Application: how a desktop opens a program that runs already.
class ApplicationAdaptor final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationAdaptor(QObject* object, std::function<void()> onReopen)
        : QDBusAbstractAdaptor(object), m_onReopen(std::move(onReopen)) {}

public Q_SLOTS:
    void Activate(const QVariantMap& platformData);
    /// There are no documents to open; the program shows itself.
    void Open(const QStringList& uris, const QVariantMap& platformData);
    /// There are no actions.
    void ActivateAction(const QString& action, const QVariantList& parameter,
                        const QVariantMap& platformData);

private:
    const std::function<void()> m_onReopen;  // a signal would go out on the bus
};

}  // namespace quietlark
