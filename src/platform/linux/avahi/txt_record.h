#pragma once

#include <QByteArrayList>

#include "platform/service_browser_backend.h"

namespace quietlark {

/// The strings of a TXT record by their keys, as RFC 6763, section 6.4, has it: split at the first
/// '='; of two with one key the first counts; one without a key counts for nothing. Strings beyond
/// the first 100, and those longer than the 255 bytes that DNS can carry, are left out.
[[nodiscard]] ResolvedService::TxtRecord txtRecordFrom(const QByteArrayList& strings);

}  // namespace quietlark
