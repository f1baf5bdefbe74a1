#pragma once

#include <QString>

namespace quietlark {

/// The processor of this computer.
class Processor {
public:
    virtual ~Processor() = default;

    /// What its maker calls it, such as "Apple M2 Pro": one line, the blanks around it as the
    /// system gives them. Empty where the system does not tell. Any thread.
    [[nodiscard]] virtual QString brandString() const = 0;
};

}  // namespace quietlark
