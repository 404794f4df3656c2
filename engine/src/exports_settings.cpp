// exports_settings: the entry points for file settings (alternate sequences, pad bytes,
// security, header values), the session's operation state, parameter-file sessions, and the
// calls this engine does not provide (NSUP_ERR, with the reason beside each).
#include <sys/resource.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "IoCounters.h"
#include "ParameterFile.h"
#include "Shim.h"

using namespace cte;

namespace {

// Starts the session from a parameter file and opens every table it lists (with its indexes
// when the data file holds its definition). Any failure ends the session again.
void OpenFromParameters(Session& s, const char* path) {
  Parameters p = ReadParameters(path);
  s.Init(p.fils, nullptr);
  try {
    for (const FileDef& t : p.tables) {
      const std::string file = t.name + ".dat";
      try {
        s.OpenIfil(t.dfilno, file, t.dfilmod, nullptr);
      } catch (const Fail& e) {
        if (e.code != RNOT_ERR) throw;
        s.OpenFile(t.dfilno, file.c_str(), t.dfilmod, nullptr);
      }
    }
  } catch (...) {
    s.Close();
    throw;
  }
}

// Starts the session and creates every table of the parameter file, left open. Any failure
// ends the session and removes the files this call created.
void CreateFromParameters(Session& s, const char* path, const char* password, long permmask) {
  if (permmask < 0 || permmask > 0777) Throw(CT_EBADARG);
  Parameters p = ReadParameters(path);
  for (FileDef& t : p.tables)
    if (!t.idx.empty()) Validate(t);
  s.Init(p.fils, nullptr);
  std::vector<std::string> made;
  try {
    for (FileDef& t : p.tables) {
      const std::string file = t.name + ".dat";
      if (t.idx.empty()) {
        s.CreateData(t.dfilno, file.c_str(), t.reclen, t.dfilmod, password);
        made.push_back(file);
      } else {
        s.CreateIfil(t, nullptr, nullptr, password);
        made.push_back(file);
        std::string dir = file.substr(0, file.rfind('/') + 1);
        for (const IndexDef& ix : t.idx)
          if (std::find(made.begin(), made.end(), dir + ix.file) == made.end()) made.push_back(dir + ix.file);
      }
    }
    if (permmask)
      for (const std::string& m : made)
        if (::chmod(m.c_str(), static_cast<mode_t>(permmask)) != 0) Throw(CT_EIO, errno);
  } catch (...) {
    s.Close();
    for (const std::string& m : made) RemoveFile(m);
    throw;
  }
}

// The figures IOPERFORMANCE and IOPERFORMANCEX report, in their order.
std::vector<int64_t> IoFigures(Session& s) {
  rusage ru{};
  ::getrusage(RUSAGE_SELF, &ru);
  const IoCounters& io = Io();
  return {static_cast<int64_t>(io.commits), static_cast<int64_t>(io.flushes), static_cast<int64_t>(io.reads),
          ru.ru_inblock, ru.ru_oublock, ru.ru_majflt, s.OpenCount(), 0};
}

}  // namespace

extern "C" {

/* ---- alternate sequences, pad bytes, security, header values ---- */
CTISAM_API COUNT GETALTSEQ(COUNT keyno, pCOUNT altseq) {
  return Run([&](Session& s) { s.GetAltSeq(keyno, altseq); });
}
CTISAM_API COUNT SETALTSEQ(COUNT keyno, pCOUNT altseq) {
  return Run([&](Session& s) { s.SetAltSeq(keyno, altseq); });
}
CTISAM_API COUNT SETVARBYTS(COUNT filno, pUTEXT pvbyte) {
  return Run([&](Session& s) { s.SetPadByte(filno, pvbyte); });
}
CTISAM_API COUNT SECURITY(COUNT filno, pVOID bufptr, LONG bufsiz, COUNT mode) {
  return Run([&](Session& s) { s.Security(filno, bufptr, bufsiz, mode); });
}
CTISAM_API COUNT PUTHDR(COUNT filno, LONG value, COUNT mode) {
  return Run([&](Session& s) { s.PutHeader(filno, value, mode); });
}
CTISAM_API LONG SETOPS(LONG status, LONG mode) {
  return RunValue<LONG>([&](Session& s) { return static_cast<LONG>(s.SetOps(status, mode)); }, -1);
}

/* ---- I/O statistics ---- */
CTISAM_API COUNT IOPERFORMANCE(pVOID buf) {
  return Run([&](Session& s) {
    if (!buf) Throw(CT_EBADARG);
    LONG* out = static_cast<LONG*>(buf);
    for (int64_t v : IoFigures(s)) *out++ = static_cast<LONG>(v);
  });
}
CTISAM_API COUNT IOPERFORMANCEX(pVOID buf) {
  return Run([&](Session& s) {
    if (!buf) Throw(CT_EBADARG);
    std::vector<int64_t> figures = IoFigures(s);
    std::memcpy(buf, figures.data(), figures.size() * sizeof(int64_t));
  });
}

/* ---- parameter files ---- */
CTISAM_API COUNT OPNISAM(pTEXT parmfile) {
  return Run([&](Session& s) { OpenFromParameters(s, parmfile); }, false);
}
CTISAM_API COUNT CREISAM(pTEXT parmfile) {
  return Run([&](Session& s) { CreateFromParameters(s, parmfile, nullptr, 0); }, false);
}
CTISAM_API COUNT CREISAMX(pTEXT parmfile, COUNT, pTEXT, pTEXT, pTEXT servname, LONG permmask, pTEXT,
                          pTEXT password) {
  return Run([&](Session& s) {
    if (servname && *servname) Throw(NSRV_ERR);
    CreateFromParameters(s, parmfile, password, permmask);
  }, false);
}

/* ---- not provided: each needs a server or transaction log files this engine does not have ---- */
// Stopping a server and its monitor: there is no server process.
CTISAM_API COUNT STPSRV(pTEXT, pTEXT, COUNT) { return NotSupported(); }
CTISAM_API COUNT SYSMON(COUNT, LONG, pTEXT, LONG) { return NotSupported(); }
// A node name identifies a client to a server.
CTISAM_API COUNT SETNODE(pTEXT) { return NotSupported(); }
// Transaction logs and their history: commits go straight into each file, there is no log.
CTISAM_API COUNT SETLOGPATH(pTEXT, LONG) { return NotSupported(); }
CTISAM_API COUNT CHGHST(COUNT) { return NotSupported(); }
CTISAM_API COUNT FREHST(void) { return NotSupported(); }
CTISAM_API COUNT CTHIST(COUNT, pTEXT, pTEXT, LONG, LONG, UCOUNT) { return NotSupported(); }

}  // extern "C"
