#pragma once

#include <optional>

#include <QStringList>

#include "platform/recycler.h"

namespace quietlark {

/// A Trash that takes what the test lets it.
class FakeRecycler final : public Recycler {
public:
    /// From now on nothing can be moved.
    std::optional<RecycleError> failure;

    [[nodiscard]] tl::expected<void, RecycleError> recycle(const QString& bundlePath) override {
        m_requests << bundlePath;
        if (failure) return tl::unexpected(*failure);
        return {};
    }

    /// Paths, in order, whatever became of them.
    [[nodiscard]] const QStringList& requests() const { return m_requests; }

private:
    QStringList m_requests;
};

}  // namespace quietlark
