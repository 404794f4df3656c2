// CommandLine: the tool's options and subcommands, parsed and dispatched (tools layer).
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Commands.h"

namespace ctt {

/// Makes the backend a command works through, from the connection options of the command line.
using BackendFactory = std::function<std::unique_ptr<TableBackend>(const ConnectionOptions&)>;

/// Runs the tool with `args` (args[0] is the program name): parses the command line, makes the
/// backend with `factory` (only for a command that needs one), runs the subcommand and returns
/// its exit code. Help goes to console.Out with kExitOk; a bad command line prints the problem and
/// a hint to console.Err and returns kExitUsage; any failure prints "ctt: <command>: <message>"
/// on console.Err and returns its exit code (see ExitCode.h). Never raises.
int RunTool(const std::vector<std::string>& args, Console& console, const BackendFactory& factory);

}  // namespace ctt
