#pragma once

#include <cstdint>
#include <optional>

#include <QJsonObject>
#include <QString>

namespace quietlark {

/// The member as a string; absent when it is missing or anything else.
[[nodiscard]] inline std::optional<QString> stringMember(const QJsonObject& object,
                                                         QLatin1String key) {
    const QJsonValue value = object.value(key);
    if (!value.isString()) return std::nullopt;
    return value.toString();
}

/// The member as a boolean; absent when it is missing or anything else.
[[nodiscard]] inline std::optional<bool> booleanMember(const QJsonObject& object,
                                                       QLatin1String key) {
    const QJsonValue value = object.value(key);
    if (!value.isBool()) return std::nullopt;
    return value.toBool();
}

/// The member as a whole number of 64 bits with sign; absent when it is missing, has a fraction,
/// does not fit, or is anything else.
[[nodiscard]] inline std::optional<std::int64_t> integerMember(const QJsonObject& object,
                                                               QLatin1String key) {
    const QJsonValue value = object.value(key);
    // toInteger() answers its argument for what is not a whole number, so ask with two.
    const qint64 integer = value.toInteger(0);
    if (!value.isDouble() || integer != value.toInteger(1)) return std::nullopt;
    return integer;
}

}  // namespace quietlark
