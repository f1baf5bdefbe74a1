#pragma once

#include <memory>

#include <pulse/pulseaudio.h>

namespace quietlark {

/// Gives an object of libpulse back by calling `release`.
template <auto release>
struct PulseRelease {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

using PulseContext = std::unique_ptr<pa_context, PulseRelease<pa_context_unref>>;
using PulseOperation = std::unique_ptr<pa_operation, PulseRelease<pa_operation_unref>>;
using PulseProperties = std::unique_ptr<pa_proplist, PulseRelease<pa_proplist_free>>;
using PulseStream = std::unique_ptr<pa_stream, PulseRelease<pa_stream_unref>>;

}  // namespace quietlark
