// ctdesign: the full-screen designer of text form files (tools).
#include <cstdio>
#include <cstring>
#include <exception>

#include "CTreeReg.h"
#include "DesignerWindow.h"
#include "Screen.h"
#include "TComponentPalette.h"
#include "TDataSource.h"

int main(int argc, char** argv) {
  if (argc != 2 || std::strcmp(argv[1], "-h") == 0 || std::strcmp(argv[1], "--help") == 0) {
    std::fprintf(
        argc == 2 ? stdout : stderr,
        "usage: ctdesign FORM\n"
        "Designs the text form file FORM (created on the first save when it does not exist):\n"
        "add connections, tables and data sources from the palette and set their properties.\n"
        "Press ? in the designer for its keys.\n");
    return argc == 2 ? 0 : 2;
  }
  try {
    // The packages the designer knows: the c-tree components and the framework's data source.
    CTreeReg::Register();
    fw::RegisterComponents("Data Access", {&fw::TDataSource::StaticClass()});
    ctdesign::DesignerWindow window(argv[1]);
    ctdesign::Screen screen;
    window.Run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "ctdesign: %s\n", e.what());
    return 1;
  }
  return 0;
}
