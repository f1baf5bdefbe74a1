#pragma once

#include "server/whisper_server.h"

namespace quietlark {

/// The real server program with the stand-in of whisper.cpp's server, which does as `model` says.
class StandInServer : public WhisperServer {
public:
    explicit StandInServer(const std::string& model)
        : WhisperServer(QStringLiteral(QUIETLARK_WHISPER_STAND_IN), model) {}
};

}  // namespace quietlark
