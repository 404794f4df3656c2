// The tool's exit codes: the numbers a script can rely on (tools layer).
#pragma once

namespace ctt {

/// What the process returns. The numbers are part of the tool's interface: never renumber.
enum ExitCode : int {
  kExitOk = 0,            ///< Done; for `import`, every row was added.
  kExitInternal = 1,      ///< An unexpected failure inside the tool (a defect: please report it).
  kExitUsage = 2,         ///< Bad command line: unknown option, bad field/index definition, bad value.
  kExitFile = 3,          ///< A file could not be read or written, or the CSV input is malformed.
  kExitStorage = 4,       ///< The storage system reported an error (its message and number are shown).
  kExitNotFound = 5,      ///< The table (or a file it needs) does not exist.
  kExitRejected = 6,      ///< `import` finished or stopped with rejected rows (each one is listed).
  kExitUnavailable = 7,   ///< The operation cannot run in this build.
  kExitInterrupted = 130, ///< `import` stopped by SIGINT (128 + 2, as shells report it).
  kExitTerminated = 143,  ///< `import` stopped by SIGTERM (128 + 15).
};

/// A one-line description of `code` for the help text ("storage error"), or "unknown".
const char* ExitCodeName(int code);

}  // namespace ctt
