#pragma once

#include "platform/login_item.h"

namespace quietlark {

/// Switches the application's own login item on or off. Main thread.
class LaunchAtLogin {
public:
    explicit LaunchAtLogin(LoginItem& item) : m_item(item) {}

    /// Answers whether the requested state holds now. An item that is not enabled counts as off,
    /// whatever keeps it from being on, and is then left alone.
    bool set(bool enabled);

private:
    LoginItem& m_item;
};

}  // namespace quietlark
