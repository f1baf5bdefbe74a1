#pragma once

namespace quietlark {

/// What a command's end tells the shell.
enum class ExitCode { Done = 0, Failed = 1, WrongUsage = 2 };

}  // namespace quietlark
