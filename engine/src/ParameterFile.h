// ParameterFile: the text format OPNISAM, CREISAM and CREISAMX read (see FORMAT.md, "Parameter
// files"): the session's file limit and the tables to open or create.
#pragma once

#include <string>
#include <vector>

#include "Schema.h"

namespace cte {

struct Parameters {
  int fils = 32;                // "session files=N"
  std::vector<FileDef> tables;  // name, dfilno (-1: the engine picks), reclen, dfilmod, indexes
};

// Parses the text of a parameter file. Throws Fail CT_EBADPARM with sysio = the 1-based number
// of the first bad line: an unknown statement or attribute, a missing required attribute, a
// malformed number or mode name, an index before any table, a segment before any index.
Parameters ParseParameters(const std::string& text);

// Reads and parses the file at path; FNOP_ERR when it cannot be read.
Parameters ReadParameters(const char* path);

}  // namespace cte
