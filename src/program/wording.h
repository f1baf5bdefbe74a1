#pragma once

class QCoreApplication;

namespace quietlark {

/// Has the program's texts name what there is on this system.
void useWordingOfThisSystem(QCoreApplication& application);

}  // namespace quietlark
