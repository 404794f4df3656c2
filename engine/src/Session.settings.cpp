// Session.settings: settings of open files (alternate collating sequences, pad bytes, password,
// permission bits, header values) and the session's operation state.
#include <sys/stat.h>

#include <cstring>
#include <set>

#include "Session.h"

namespace cte {

namespace {

std::string DirOf(const std::string& path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

}  // namespace

// A definition change that alters keys: the definition is stored and the given indexes are
// rebuilt from the records in one transaction, then every position forgets their keys.
void Session::RekeyIndexes(Handle& h, const FileDef& def, const std::vector<size_t>& ordinals) {
  CheckWritable(h);
  DataStore& s = *h.store;
  WriteDefinition(h, [&](Txn* txn) {
    s.PutDef(txn, def);
    for (size_t ordinal : ordinals) FillIndex(s, txn, ordinal);
  });
  for (auto& p : files_)
    if (p && !p->isIndex && p->store.get() == &s)
      for (size_t ordinal : ordinals) ForgetKeys(*p, ordinal);
}

void Session::SetAltSeq(int keyno, const int16_t* altseq) {
  Handle& f = Index(keyno);
  if (!altseq) Throw(CT_EBADARG);
  FileDef def = f.store->def();
  std::vector<uint8_t>& table = def.idx[f.ordinal].altseq;
  table.resize(256);
  for (int i = 0; i < 256; ++i) {
    if (altseq[i] < 0 || altseq[i] > 255) Throw(CT_EBADARG);
    table[i] = static_cast<uint8_t>(altseq[i]);
  }
  RekeyIndexes(*files_[f.datno], def, {f.ordinal});
}

void Session::GetAltSeq(int keyno, int16_t* altseq) {
  Handle& f = Index(keyno);
  if (!altseq) Throw(CT_EBADARG);
  const std::vector<uint8_t>& table = f.store->def().idx[f.ordinal].altseq;
  if (table.empty()) Throw(RNOT_ERR);
  for (int i = 0; i < 256; ++i) altseq[i] = table[i];
}

void Session::SetPadByte(int filno, const uint8_t* pvbyte) {
  Handle& f = File(filno);
  if (!pvbyte || pvbyte[1] != 0) Throw(CT_EBADARG);
  Handle& h = f.isIndex ? *files_[f.datno] : f;
  FileDef def = h.store->def();
  std::vector<size_t> ordinals;
  for (size_t i = 0; i < def.idx.size(); ++i) {
    if (f.isIndex && i != f.ordinal) continue;
    def.idx[i].empchr = pvbyte[0];
    ordinals.push_back(i);
  }
  if (ordinals.empty()) return;
  RekeyIndexes(h, def, ordinals);
}

void Session::Security(int datno, const void* buf, long bufsiz, int mode) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (h.mode & SHARED) Throw(FMOD_ERR);
  DataStore& s = *h.store;
  switch (mode) {
    case SEC_PASSWORD: {
      std::string word;
      if (buf) {
        if (bufsiz <= 0 || !std::memchr(buf, 0, bufsiz)) Throw(CT_EBADARG);
        word = static_cast<const char*>(buf);
      }
      FileHeader hdr = s.header();
      hdr.password = PasswordHash(word.c_str());
      Write(h, [&](Txn* txn) { s.PutHeader(txn, hdr); });
      s.CacheHeader(hdr);
      h.password = word;
      // The set's index files keep the same password (mapped ones belong to another table).
      std::set<std::string> files;
      for (const IndexDef& ix : s.def().idx)
        if (ix.temp != kMappedIndex && files.insert(ix.file).second) IndexFile::PutPassword(DirOf(h.path) + ix.file, hdr.password);
      return;
    }
    case SEC_PERMMASK: {
      LONG bits = 0;
      if (!buf || bufsiz < static_cast<long>(sizeof bits)) Throw(CT_EBADARG);
      std::memcpy(&bits, buf, sizeof bits);
      if (bits < 0 || bits > 0777) Throw(CT_EBADARG);
      std::vector<std::string> paths{h.path};
      for (const IndexDef& ix : s.def().idx) paths.push_back(DirOf(h.path) + ix.file);
      for (const std::string& p : paths)
        if (::chmod(p.c_str(), static_cast<mode_t>(bits)) != 0) Throw(CT_EIO, errno);
      return;
    }
    default: Throw(CT_EBADARG);
  }
}

void Session::PutHeader(int datno, long value, int mode) {
  Handle& h = Data(datno);
  CheckWritable(h);
  if (mode != HDR_SERIAL || value < 0) Throw(CT_EBADARG);
  DataStore& s = *h.store;
  Write(h, [&](Txn* txn) {
    DataStore::Counters c = s.ReadCounters(txn);
    c.serial = static_cast<uint32_t>(value);
    s.WriteCounters(txn, c);
  });
}

long Session::SetOps(long status, int mode) {
  if (status & ~long{OPS_FLUSH}) Throw(CT_EBADARG);
  const long before = ops_;
  switch (mode) {
    case OPS_STATE_OFF: ops_ &= ~status; break;
    case OPS_STATE_SET: ops_ = status; break;
    case OPS_STATE_ON: ops_ |= status; break;
    case OPS_STATE_RET: break;
    default: Throw(CT_EBADARG);
  }
  return before;
}

}  // namespace cte
