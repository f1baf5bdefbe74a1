#pragma once

#include <functional>

namespace quietlark {

/// Calls `visit` with every open descriptor of this process, of whatever kind. Any thread.
void forEachOpenDescriptor(const std::function<void(int descriptor)>& visit);

}  // namespace quietlark
