// ctt: the command-line tool's entry point (tools layer).
#include <unistd.h>

#include <iostream>

#include "CommandLine.h"
#include "ProgressBar.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  ctt::Console console{std::cout, std::cerr, ctt::ProgressBar::IsTerminal(STDERR_FILENO)};
  const int code = ctt::RunTool(std::vector<std::string>(argv, argv + argc), console, ctt::MakeTableBackend);
  std::cout.flush();
  return code;
}
