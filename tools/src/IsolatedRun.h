// IsolatedRun: part of a command run in a child process, so that a file damaged badly enough to
// end the program reading it ends only the child.
#pragma once

#include <functional>

#include "ToolError.h"

namespace ctt {

/// Runs `body` in a forked child and tells how it ended: Code kExitOk when it returned, the
/// report of what it raised (as DescribeException gives it), or kExitStorage with error 803 and
/// the signal when the child died. Output `body` writes stays in the child: it should write none.
ErrorReport RunIsolated(const std::function<void()>& body);

}  // namespace ctt
