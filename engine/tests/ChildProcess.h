// ChildProcess: runs part of a test in a forked child on an engine instance of its own.
#pragma once

#include <unistd.h>

#include "ChildExit.h"
#include "EngineApi.h"

// Runs body(api) in a child process that loads libctreebm.so (byte-packed like the parent's
// variant, but a separate instance, so it opens the files as another process would); the
// child's exit status is body's result (90 when the engine could not be started).
template <typename F>
pid_t Spawn(F&& body) {
  pid_t pid = fork();
  if (pid == 0) {
    EngineApi child;
    int rc = child.Load("libctreebm.so") && child.INTISAM(10, 32, 4) == 0 ? body(child) : 90;
    _exit(rc);
  }
  return pid;
}

// The exit status of child pid, or 100 + the signal that ended it.
inline int Wait(pid_t pid) { return ct::testsupport::WaitChild(pid); }
