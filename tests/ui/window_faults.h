#pragma once

#include <QStringList>
#include <QWidget>

namespace quietlark {

/// What is wrong with a visible window as it stands, a sentence each: text that is cut off or hard
/// to read, parts that overlap or stick out, a control that the Tab key does not reach or reaches
/// out of order, or that a screen reader has no name for, and two buttons that both look as if
/// Return would click them. Leaves the focus where it was.
[[nodiscard]] QStringList faultsOf(QWidget& window);

}  // namespace quietlark
