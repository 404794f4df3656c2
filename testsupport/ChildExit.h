// Waiting for the child processes of a test (every layer's multi-process tests).
#pragma once

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>

#include <chrono>
#include <thread>

namespace ct::testsupport {

/// The exit code a wait status stands for, or 100 + the signal that ended the child.
inline int ExitCode(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : 100 + WTERMSIG(status); }

/// Waits for child `pid`: its exit code, or 100 + the signal that ended it.
inline int WaitChild(pid_t pid) {
  int status = 0;
  waitpid(pid, &status, 0);
  return ExitCode(status);
}

/// As WaitChild, for at most `limit`: a child still running then is killed and -1 returned.
inline int WaitChildWithin(pid_t pid, std::chrono::seconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  int status = 0;
  while (waitpid(pid, &status, WNOHANG) == 0) {
    if (std::chrono::steady_clock::now() > end) {
      kill(pid, SIGKILL);
      waitpid(pid, &status, 0);
      return -1;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return ExitCode(status);
}

}  // namespace ct::testsupport
