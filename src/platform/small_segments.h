#pragma once

namespace quietlark {

/// Lets every TCP socket of this process send a short piece at once, instead of holding it back
/// until the piece before has been acknowledged (Nagle's algorithm, RFC 896). For those whose owner
/// gives no access to its socket. Any thread.
void sendSmallSegmentsAtOnce();

}  // namespace quietlark
