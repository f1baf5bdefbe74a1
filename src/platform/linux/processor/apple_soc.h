#pragma once

#include <QByteArray>
#include <QString>

namespace quietlark {

/// The brand of an Apple system on a chip, such as "Apple M2 Pro", from the device tree's
/// "compatible" property: identifiers that each end in NUL, among them one such as "apple,t6020".
/// Empty when it names no such chip, or one that is not known here. Any thread.
///
/// The identifiers are those of the kernel's device-tree bindings (arm/apple.yaml); for the third
/// and fourth generation those that Apple's own device trees use in the same place.
[[nodiscard]] QString appleSocBrand(const QByteArray& compatible);

}  // namespace quietlark
