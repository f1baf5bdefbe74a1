#include "platform/linux/avahi/txt_record.h"

#include <algorithm>

namespace quietlark {

namespace {

constexpr qsizetype maxStrings = 100;
constexpr qsizetype maxStringBytes = 255;

}  // namespace

ResolvedService::TxtRecord txtRecordFrom(const QByteArrayList& strings) {
    ResolvedService::TxtRecord record;
    for (const QByteArray& string : strings.first(std::min(strings.size(), maxStrings))) {
        const qsizetype equals = string.indexOf('=');
        const QByteArray key = equals < 0 ? string : string.first(equals);
        if (key.isEmpty() || string.size() > maxStringBytes || record.contains(key)) continue;
        record.insert(key, equals < 0 ? QByteArray() : string.sliced(equals + 1));
    }
    return record;
}

}  // namespace quietlark
