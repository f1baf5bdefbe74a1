#pragma once

#include <cstdlib>
#include <memory>

namespace quietlark {

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); }
};

/// An XCB reply, event or error: memory that the library has malloc'ed for us.
template <typename T>
using XcbReply = std::unique_ptr<T, FreeDeleter>;

}  // namespace quietlark
