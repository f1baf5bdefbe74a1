#pragma once

#include <mutex>
#include <vector>

#include <QByteArray>

#include "platform/linux/pulse/pulse_mainloop.h"
#include "platform/linux/pulse/pulse_pointer.h"

namespace quietlark {

/// Plays a sound of one channel at 48 kHz on the default loudspeaker, and knows how far it is. The
/// server has all of it from the start, so that nothing on our side can hold it up.
class Player {
public:
    Player(const QByteArray& server, const std::vector<float>& sound);
    ~Player();

    /// How many frames have left the loudspeaker; a little less than that, never more.
    [[nodiscard]] std::int64_t heardFrames();

private:
    PulseMainloop m_mainloop;
    PulseContext m_context;
    PulseStream m_stream;
};

}  // namespace quietlark
