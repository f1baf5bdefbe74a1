#pragma once

#include "local_server/model_files.h"
#include "platform/durable_file.h"

namespace quietlark {

/// Puts the received model, verified and synced, in the place of the active one, and forgets how it
/// came. Until the very step the old model stays; a power cut leaves one of the two. After a
/// failure the files stay where they have got to. Not the main thread.
[[nodiscard]] FileOutcome installModel(const ModelFiles& files);

}  // namespace quietlark
