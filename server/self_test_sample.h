#pragma once

#include <cstdint>
#include <span>

namespace quietlark {

/// self_test_sample.wav, built into the program: "I think that we should go home now", spoken by a
/// synthesiser.
[[nodiscard]] std::span<const std::uint8_t> selfTestSample();

}  // namespace quietlark
