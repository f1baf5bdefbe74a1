#include "notifications/notification_center.h"

namespace quietlark {

void NotificationCenter::post(const QString& name) {
    Q_EMIT posted(name);
}

}  // namespace quietlark
