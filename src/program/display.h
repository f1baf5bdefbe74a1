#pragma once

namespace quietlark {

/// Whether there is an X server to show anything on. Waits for it as long as any X program does.
[[nodiscard]] bool hasDisplay();

/// Tells the user that the connection to the X server was lost; once per process, since more than
/// one connection notices. Main thread.
void sayDisplayIsLost();

/// Has the end of the connection to the X server reported in the program's own words. Qt ends the
/// process by itself then, with a message of its own. From then on no broken connection ends the
/// process by a signal.
void reportLostDisplay();

}  // namespace quietlark
