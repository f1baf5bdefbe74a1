#pragma once

namespace quietlark {

/// Lets the system receive no more than a quarter of a mebibyte ahead of this process on every TCP
/// socket whose other end is less than 2 ms away: what waits there is lost with the process. That
/// still carries more than 100 megabytes a second. Connections to farther ends are left alone: they
/// need large buffers to be fast, and are seldom faster than their reader, so that little waits in
/// them. For those whose owner gives no access to its socket. Any thread.
void boundReceiveBuffersOfNearConnections();

}  // namespace quietlark
