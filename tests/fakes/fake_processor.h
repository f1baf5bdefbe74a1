#pragma once

#include "platform/processor.h"

namespace quietlark {

/// A processor of whatever brand the test says.
class FakeProcessor final : public Processor {
public:
    FakeProcessor() = default;
    explicit FakeProcessor(const char* utf8) : brand(QString::fromUtf8(utf8)) {}

    [[nodiscard]] QString brandString() const override {
        ++m_questions;
        return brand;
    }

    /// How often anybody has asked.
    [[nodiscard]] int questions() const { return m_questions; }

    QString brand;

private:
    mutable int m_questions = 0;
};

}  // namespace quietlark
