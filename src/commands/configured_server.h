#pragma once

#include <QString>
#include <tl/expected.hpp>

#include "config/config.h"
#include "transcription/endpoint_file.h"

namespace quietlark {

/// The address of the server that the settings choose; else one sentence for the user on why there
/// is none.
using ConfiguredServer = tl::expected<QString, QString>;

/// `configPath` is where `config` was read from: a file there that could not be understood is a
/// reason too.
[[nodiscard]] ConfiguredServer configuredServer(const QString& configPath, const Config& config,
                                                const EndpointFile& endpointFile);

}  // namespace quietlark
