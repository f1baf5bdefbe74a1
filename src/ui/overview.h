#pragma once

#include <QStringList>
#include <QWidget>

#include "config/config.h"
#include "permissions/permissions.h"

namespace quietlark {

/// How to dictate with these settings and what stands in the way, a sentence each, for the user.
[[nodiscard]] QStringList overview(const Config& config,
                                   const Permissions::Explanations& explanations,
                                   const QString& configPath);

/// Shows such sentences, to be read and copied.
class Overview final : public QWidget {
    Q_OBJECT

public:
    explicit Overview(const QStringList& sentences);
};

}  // namespace quietlark
