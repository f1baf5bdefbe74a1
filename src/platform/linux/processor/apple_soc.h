#pragma once

#include <QByteArray>
#include <QString>

namespace quietlark {

/// The brand of an Apple system on a chip, such as "Apple M2 Pro", from the device tree's
/// "compatible" property: identifiers that each end in NUL, among them one such as "apple,t6020".
/// Empty when it names no such chip, or one that is not known here. Any thread.
///
/// The kernel's binding (Documentation/devicetree/bindings/arm/apple.yaml) makes the identifier of
/// the chip's SoC ID. It names the M1 and M2 families and the M3; its patches of July 2026 name M3
/// Pro, Max and Ultra ("dt-bindings: arm: apple: Add M3 Pro/Max/Ultra devices (T603x)") and M4. The
/// IDs of M4 Pro and Max are those of Asahi Linux (docs/hw/soc/soc-codenames.md).
[[nodiscard]] QString appleSocBrand(const QByteArray& compatible);

}  // namespace quietlark
