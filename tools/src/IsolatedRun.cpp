// IsolatedRun: the child reports how it ended through a pipe: its exit code, a newline, the
// message.
#include "IsolatedRun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

namespace ctt {

namespace {

constexpr std::int32_t kDamaged = 803;

void WriteAll(int fd, const std::string& text) {
  for (size_t done = 0; done < text.size();) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    done += static_cast<size_t>(n);
  }
}

std::string ReadAll(int fd) {
  std::string text;
  char buffer[4096];
  for (;;) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return text;
    text.append(buffer, static_cast<size_t>(n));
  }
}

}  // namespace

ErrorReport RunIsolated(const std::function<void()>& body) {
  int fds[2];
  if (::pipe2(fds, O_CLOEXEC) != 0)
    throw ToolError(kExitInternal, std::string("cannot start a child process: ") + std::strerror(errno));
  std::fflush(nullptr);
  const pid_t pid = ::fork();
  if (pid < 0) {
    ::close(fds[0]);
    ::close(fds[1]);
    throw ToolError(kExitInternal, std::string("cannot start a child process: ") + std::strerror(errno));
  }
  if (pid == 0) {
    ::close(fds[0]);
    ErrorReport report{std::string(), kExitOk};
    try {
      body();
    } catch (...) {
      report = DescribeException(std::current_exception());
    }
    WriteAll(fds[1], std::to_string(report.Code) + '\n' + report.Message);
    ::_exit(0);
  }
  ::close(fds[1]);
  const std::string answer = ReadAll(fds[0]);
  ::close(fds[0]);
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  const size_t newline = answer.find('\n');
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0 && newline != std::string::npos)
    return ErrorReport{answer.substr(newline + 1), static_cast<ExitCode>(std::stoi(answer.substr(0, newline)))};
  const std::string how = WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status)) + ", " +
                                                    strsignal(WTERMSIG(status))
                                              : "exit code " + std::to_string(WEXITSTATUS(status));
  return ErrorReport{"reading the file ended the process that read it (" + how + "): " + DescribeErrorNumber(kDamaged),
                     kExitStorage};
}

}  // namespace ctt
