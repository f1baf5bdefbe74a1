#include "servers/apple_silicon_variant.h"

#include <algorithm>
#include <array>

#include "servers/blanks.h"

namespace quietlark {

namespace {

using Tier = AppleSiliconVariant::Tier;

/// By generation, from 1, and tier.
constexpr std::array<std::array<double, 4>, 4> estimates{{
    {7.0, 10.0, 13.0, 16.0},
    {9.0, 13.0, 16.0, 20.0},
    {12.0, 15.0, 20.0, 25.0},
    {14.0, 18.0, 22.0, 28.0},
}};

bool isAsciiDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

std::optional<Tier> tierNamed(QStringView name) {
    if (name.isEmpty()) return Tier::base;
    for (const Tier tier : {Tier::pro, Tier::max, Tier::ultra}) {
        if (name == rawValue(tier)) return tier;
    }
    return std::nullopt;
}

QString suffix(Tier tier) {
    switch (tier) {
        case Tier::base:
            return {};
        case Tier::pro:
            return QStringLiteral(" Pro");
        case Tier::max:
            return QStringLiteral(" Max");
        case Tier::ultra:
            return QStringLiteral(" Ultra");
    }
    return {};
}

}  // namespace

std::optional<AppleSiliconVariant> AppleSiliconVariant::parse(const QString& brand) {
    const QLatin1String prefix("apple m");
    const QString lowerCased = brand.toLower();
    if (!lowerCased.startsWith(prefix)) return std::nullopt;
    const QStringView rest = QStringView(lowerCased).sliced(prefix.size());
    const auto digitCount = std::find_if_not(rest.begin(), rest.end(), isAsciiDigit) - rest.begin();

    bool isNumber = false;
    const qlonglong number = rest.first(digitCount).toLongLong(&isNumber);
    const auto tier = tierNamed(trimmedOfBlanks(rest.sliced(digitCount)));
    if (!isNumber || number < 1 || !tier) return std::nullopt;
    return AppleSiliconVariant{number, *tier};
}

QString AppleSiliconVariant::displayName() const {
    return QStringLiteral("Apple M") + QString::number(generation) + suffix(tier);
}

std::optional<double> AppleSiliconVariant::estimatedRTF() const {
    const auto known = static_cast<std::int64_t>(estimates.size());
    if (generation < 1 || generation > known) return std::nullopt;
    return estimates[static_cast<std::size_t>(generation - 1)][static_cast<std::size_t>(tier)];
}

QString rawValue(Tier tier) {
    switch (tier) {
        case Tier::base:
            return QStringLiteral("base");
        case Tier::pro:
            return QStringLiteral("pro");
        case Tier::max:
            return QStringLiteral("max");
        case Tier::ultra:
            return QStringLiteral("ultra");
    }
    return {};
}

}  // namespace quietlark
