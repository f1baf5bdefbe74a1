#pragma once

#include "transcription/server_endpoint.h"
#include "transcription/server_resolver.h"
#include "transcription/transcription_client.h"

namespace quietlark {

/// The steps from the user's choice of server and a recording to its text, in their order.
struct TranscriptionService {
    ServerEndpoint endpoint;     ///< the choice to a base address
    ServerResolver resolver;     ///< a base address to a server that answers
    TranscriptionClient client;  ///< a recording to its text
};

}  // namespace quietlark
