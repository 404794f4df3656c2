// Session: the engine's per-process session state (file numbers, handles, contexts, errors)
// and the core operations the exported calls forward to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DataStore.h"
#include "Env.h"
#include "FileLock.h"
#include "KeptCursor.h"
#include "StorageFiles.h"
#include "WriteTxn.h"
#include "Schema.h"
#include "Superfile.h"
#include "ctisam.h"

namespace cte {

// One index's current key in one context. `at` says the cursor stands on `key`, so that the
// next step needs no seek.
struct KeyPos {
  uint8_t key[CT_MAXKEYLEN];
  uint32_t pos = 0;
  bool valid = false;
  bool at = false;
  KeptCursor cur;
};

// The current record and keys of one data file in one context.
struct Position {
  explicit Position(size_t nkeys);
  // Copies another context's positions (cursors are not shared: the copy re-seeks).
  void CopyFrom(const Position& o);
  uint32_t cur = 0;
  bool recAt = false;
  KeptCursor recCur;
  Bytes curVal{};  // the current record in the snapshot of generation curGen
  uint64_t curGen = 0;
  std::vector<std::unique_ptr<KeyPos>> keys;
  std::vector<uint8_t> curSpace;  // the current record decoded, when curVal points here
};

// An open file number: a data file, or one index (member) of a data file's set.
struct Handle {
  int16_t self = -1;  // this handle's file number: the owner of its record locks
  bool isIndex = false;
  bool isHost = false;             // a superfile host opened as such (GETMNAME)
  std::shared_ptr<Env> hostEnv;    // host: its environment
  size_t memberNext = 0;           // host: the next member GETMNAME gives
  std::vector<std::string> members;  // host: the member names as the GETMNAME walk began
  std::string name;  // as given to the open
  std::string path;
  int mode = 0;
  std::string password;
  std::shared_ptr<DataStore> store;
  std::unique_ptr<FileLock> lock;
  std::shared_ptr<Env> idxEnv;  // index member: its index file
  std::shared_ptr<FileLock> idxLock;
  int16_t datno = -1;           // index member: its data file
  size_t ordinal = 0;           // index member: its place in the data file's definition
  std::vector<int16_t> keynos;  // data file: the number of each index, -1 when not open
  std::unique_ptr<Position> base;
  int active = -1;  // active context id, -1 for base
  std::vector<int> stack;
};

// A saved current key, put back when a step has to be undone (a lock refused).
struct KeyMark {
  explicit KeyMark(const KeyPos& kp) : pos(kp.pos), valid(kp.valid) {
    std::copy(kp.key, kp.key + CT_MAXKEYLEN, key);
  }
  void Restore(KeyPos& kp) const {
    std::copy(key, key + CT_MAXKEYLEN, kp.key);
    kp.pos = pos;
    kp.valid = valid;
    kp.at = false;
  }
  uint8_t key[CT_MAXKEYLEN];
  uint32_t pos;
  bool valid;
};

enum NavOp { kFirst, kNext, kPrev, kLast, kEq, kGte, kGt, kLte, kLt };

// A set (FRSSET .. MIDSET): the keys of one index starting with a prefix, and the key this set
// stands on. Each set keeps its own position, so navigation between set calls does not move it.
struct KeySet {
  int16_t keyno = -1;
  std::weak_ptr<DataStore> store;  // the file the set was made on (a reused number is refused)
  int siglen = 0;
  uint8_t prefix[CT_MAXKEYLEN];
  uint8_t last[CT_MAXKEYLEN];
};

// A batch (BATSET): the positions (and keys) of the records selected when the batch started,
// handed out in buffer-sized chunks.
struct BatchState {
  int16_t keyno = -1;
  std::weak_ptr<DataStore> store;
  int options = 0;
  int keylen = 0;
  std::vector<uint32_t> positions;
  std::vector<uint8_t> keys;  // keylen bytes per position (BAT_KEY only)
  size_t next = 0;
};

// BATSET's request in the engine's own form (the caller's KEYREQ depends on the packing).
struct BatchRequest {
  long total = 0, avail = 0, used = 0;
  int siglen = 0;
  const uint8_t* target = nullptr;
};

class Session {
 public:
  // Session.cpp: session, errors, file numbers, names.
  void Init(int fils, const char* servname);
  void Close();
  bool Active() const { return active_; }
  void SetError(int code, int sysio);
  int16_t isamErr = 0, userErr = 0, sysio = 0;
  int AvlFilNum(int n) const;
  // Longest wait of ENABLE_BLK for a lock (CTISAM_LOCK_TIMEOUT_MS when the session starts,
  // otherwise 5000 ms).
  int LockTimeoutMs() const { return lockTimeoutMs_; }
  void TmpName(char* buf, long len) const;
  void GetNam(int filno, char* buf, long len);
  long GetFil(int filno, int mode);
  void PutFil(int filno, int mode);
  int Fils() const { return static_cast<int>(files_.size()); }
  int OpenCount() const;

  // Session.files.cpp: creating, opening, closing, deleting, renaming.
  void CreateData(int filno, const char* name, int reclen, int filmod, const char* password);
  void OpenFile(int filno, const char* name, int filmod, const char* password);
  void CloseFile(int filno);
  void DeleteFile(int filno);
  int CreateIfil(FileDef& def, const char* dataext, const char* idxext, const char* password);
  int OpenIfil(int filno, const std::string& path, int filmod, const char* password);
  void CloseSet(int datno);
  void DeleteSet(int datno);
  void Rename(int filno, const char* newname);
  FileDef GetIfil(int datno);
  void PutIfil(const FileDef& def);
  std::vector<FieldDef> GetFields(int datno);
  void PutFields(int datno, const std::vector<FieldDef>& fields);
  void AddRes(int datno, const void* res, long len, bool update);
  void DelRes(int datno, const void* res);
  long GetRes(int datno, const void* res, void* buf, long bufsiz);

  // Session.records.cpp: records and the ISAM write calls.
  void AddRec(int datno, void* rec, long len);
  void Rewrite(int datno, const void* rec, long len);
  void DeleteRec(int datno);
  // Copies the current record (or the one at pos) into buf; returns its length. fixed copies
  // the fixed length; otherwise bufsiz bounds it (VBSZ_ERR).
  long ReadCur(int datno, void* buf, long bufsiz, bool fixed);
  long ReadAt(int datno, uint32_t pos, void* buf, long bufsiz, bool fixed, bool makeCurrent);
  void SetCur(int datno, uint32_t pos, const void* rec, long len);
  uint32_t CurPos(int datno);
  void ForgetCur(int datno);
  // Moves in physical order (filno a data file) or key order (an index) and reads the record.
  long Navigate(int filno, NavOp op, const void* target, void* buf, long bufsiz, bool fixed);
  uint32_t NewRec(int datno, long len);
  void WriteAt(int datno, uint32_t pos, const void* rec, long len);
  void ReleaseAt(int datno, uint32_t pos);
  long DatEnt(int datno);
  uint32_t SerialNum(int datno);

  // Session.keys.cpp: keys, counts, contexts.
  uint32_t KeyNav(int keyno, NavOp op, const void* target, void* idxval);
  int FormKey(int keyno, const void* rec, void* key, uint32_t pos, long len);
  void TransformKey(int keyno, void* key);
  void GetCurKey(int keyno, void* idxval, long* plen);
  void AddKey(int keyno, const void* key, uint32_t pos);
  void DeleteKey(int keyno, const void* key, uint32_t pos, bool checkPos);
  long IdxEnt(int keyno);
  long RangeCount(int keyno, const void* low, const void* high);
  uint32_t KeyAtPercent(int keyno, void* idxval, int percent);
  uint32_t KeyByOrdinal(int keyno, const void* target, long offset, void* idxval);
  int OpenContext(int datno, int id);
  void ChangeContext(int id);
  void CloseContext(int id);

  // Session.indexes.cpp: conditions, indexes added to an open file, rebuild and compaction.
  // UPDCIDX: sets (or with an empty expr removes) the condition of keyno and rebuilds the index.
  void UpdateCondition(int keyno, const char* expr);
  std::string GetCondition(int keyno);
  // GETMNAME: the next member name of superfile host filno (first with mode 0); INOT_ERR after
  // the last.
  std::string NextMember(int filno, int mode);
  // TMPIIDXX: adds the indexes of `added` to open data file datno as file numbers firstKeyno..
  // (-1: the engine picks), fills them from the records; returns the first number.
  int AddIndexes(int datno, int firstKeyno, FileDef added, const char* idxext, bool temp);
  // setimap: index file imapno, opened on its own (OPNFIL), joins open data file datno: its
  // members become indexes imapno, imapno+1, ... of datno, filled from the records, until the
  // index file or the data file closes. ifil is the caller's definition of the data file (its
  // record length must match); mode must be 0.
  void MapIndexFile(int imapno, const FileDef& ifil, int datno, int mode);
  // CREIDX: creates index file name (DCRAT_ERR when it exists) holding one index of keylen
  // bytes (keydup 1: duplicates) and room for nomemb members (CREMEM), and leaves it open on its
  // own as keyno (FNUM_ERR when negative) in mode filmod. Its indexes get their segments
  // and keys when setimap maps it onto a data file.
  int CreateIndexFile(int keyno, const char* name, int keylen, int keytyp, int keydup, int nomemb, int filmod,
                      const char* password);
  // CREMEM: defines member membno (1..nomemb) of the index file keyno made by CREIDX (open on its
  // own, EXCLUSIVE). DCRAT_ERR when that member is defined already.
  void CreateMember(int keyno, int keylen, int keytyp, int keydup, int membno);
  // PRMIIDX: the temporary indexes of datno become permanent.
  void MakePermanent(int datno);
  // RBLIFIL / CMPIFIL on a closed set.
  void Rebuild(const FileDef& def, const char* dataext, const char* idxext, const char* password, bool compact);

  // Session.sets.cpp: sets. op kFirst/kLast start the active set from target's first siglen
  // bytes; kNext/kPrev move within it. Returns the record length; INOT_ERR at the set's ends.
  long SetNav(int keyno, NavOp op, const void* target, int siglen, void* buf, long bufsiz, bool fixed);
  // MIDSET: the active set becomes the one of the current record's key prefix, on that record.
  long SetMid(int keyno, int siglen, void* buf, long bufsiz, bool fixed);
  void AllocSets(int count);
  void ChangeSet(int setno);
  void FreeSets();

  // Session.batches.cpp: BATSET on the active batch; ALCBAT, CHGBAT, FREBAT.
  void Batch(int keyno, BatchRequest& req, void* buf, long bufsiz, int mode);
  void AllocBatches(int count);
  void ChangeBatch(int batno);
  void FreeBatches();

  // Session.settings.cpp: per-file settings and header values, the session's operation state.
  // SETALTSEQ / GETALTSEQ: the alternate collating sequence of keyno (256 weights 0..255); setting
  // it rebuilds the index's keys. GETALTSEQ: RNOT_ERR when the index has none.
  void SetAltSeq(int keyno, const int16_t* altseq);
  void GetAltSeq(int keyno, int16_t* altseq);
  // SETVARBYTS: pad byte pvbyte[0] for keyno, or for every index of a data file (keys rebuilt);
  // pvbyte[1], the field delimiter, must be 0.
  void SetPadByte(int filno, const uint8_t* pvbyte);
  // SECURITY on an exclusively open data file: SEC_PASSWORD, SEC_PERMMASK.
  void Security(int datno, const void* buf, long bufsiz, int mode);
  // PUTHDR: HDR_SERIAL sets the last serial number given.
  void PutHeader(int datno, long value, int mode);
  // SETOPS: changes the operation state word by mode; returns the previous one.
  long SetOps(long status, int mode);

  // Session.locks.cpp: lock sets, record locks, transactions.
  void LockSet(int mode);
  void LockRecord(int datno, int mode, uint32_t pos);
  long TranBegin(int mode);
  void TranEnd(int mode);
  void TranAbort();
  int TranSave();
  void TranRestore(int savepoint);

 private:
  struct Context {
    int16_t datno;
    std::unique_ptr<Position> pos;
  };
  // Any open file number, including an index file opened on its own.
  Handle& Slot(int filno);
  // An open file number usable for records and keys (CT_EUNMAPPED for an index file opened on
  // its own and not mapped onto a data file).
  Handle& File(int filno);
  Handle& Data(int datno);
  Handle& Index(int keyno);
  Position& Pos(Handle& data);
  void CheckWritable(const Handle& h) const;
  int16_t Claim(int filno, int count);
  void Release(int filno);
  void DropContexts(int datno);
  // Session.mapping.cpp. Opens index file name alone as file number no.
  void OpenIndexAlone(int16_t no, std::unique_ptr<Handle> h, const char* name, int filmod, const char* password);
  // Removes indexes (ordinals of h's definition) with their keys; their handles close and the
  // later indexes move down.
  void DropIndexes(Handle& h, std::vector<size_t> ordinals);
  // The same, storing def: the remaining indexes, in their order (PUTIFIL's changes applied).
  void DropIndexes(Handle& h, std::vector<size_t> ordinals, const FileDef& def);
  // Removes the temporary and mapped indexes of data file h (when it closes).
  void DropTemporary(Handle& h);
  // DropTemporary when h is the last open of its file anywhere (its lock can become exclusive);
  // a failure leaves the indexes flagged for a later close or a rebuild.
  void DropTemporaryIfLast(Handle& h);
  // DELFIL of an index: the index file with every member it holds and their keys (EXCLUSIVE).
  void DeleteIndexFile(int keyno);
  // Empties the key database of index ordinal and adds the key of every record (inside txn).
  void FillIndex(DataStore& s, Txn* txn, size_t ordinal);
  // Marks index ordinal's current keys unknown in every context of data handle `data` (and
  // gives its positions room for indexes added since).
  void ForgetKeys(Handle& data, size_t ordinal);
  // Reloads the store's definition and remaps every handle of it (Remap).
  void Refresh(DataStore& s);
  // The key database number of each index of def, by ordinal.
  static std::vector<int16_t> KeyDbsOf(const FileDef& def);
  // After the store's definition changed from one whose indexes had the key databases `before`:
  // index handles follow their index to its new ordinal or close when it is gone; key numbers
  // and current keys of every data handle and context follow too; new indexes get room.
  void Remap(DataStore& s, const std::vector<int16_t>& before);
  // True while writes go to held transactions (lock set or transaction active).
  bool HoldingMode() const { return lockMode_ != FREE || tranActive_; }
  // True while reads take locks (a lock set active and not suspended).
  bool Locking() const { return lockMode_ != FREE && !suspended_; }
  // Makes sure the file's environment has a held transaction (writes of the set go there).
  void Join(Handle& h);
  // Commits (or aborts) every held transaction; the first commit failure is thrown after all
  // have ended.
  void EndHeld(bool commit);
  void ReleaseSetLocks();
  void ReleaseLocksOf(Handle& h);
  // Takes the open-mode lock of a superfile member (FNOP_ERR when another handle or process
  // holds it in a conflicting mode).
  void LockMember(Handle& h, int filmod);
  // Takes the lock the active lock set asks for (a write lock when forChange) on record pos of
  // data file h; nothing outside a set or while it is suspended. DLOK2_ERR, or DTMO_ERR after
  // waiting (ENABLE_BLK).
  void AutoLock(Handle& h, uint32_t pos, bool forChange);
  // Takes a lock, waiting up to the time-out when wait is set. DLOK2_ERR / DTMO_ERR.
  void TakeLock(Handle& h, uint32_t pos, bool write, bool wait, bool setLock);
  // Before a rewrite or delete of pos: DLOK2_ERR when another owner holds a lock on it,
  // DLOK_ERR when the file requires locks (CHECKLOCK) and this handle holds none.
  void CheckChange(Handle& h, uint32_t pos);
  // Runs f(txn) in one write transaction on the store and commits it, growing the map and
  // retrying when it is full. Later lock sets will hold one transaction across calls here.
  template <typename F>
  void Write(Handle& h, F&& f);
  // Write for a definition change: the store's cached definition changes inside the
  // transaction, so a failure reloads it from the file.
  template <typename F>
  void WriteDefinition(Handle& h, F&& f) {
    try {
      Write(h, f);
    } catch (...) {
      h.store->Reload();
      throw;
    }
  }
  // The record at pos in the current snapshot, in its stored form (false when none): pass it
  // through DataStore::Unpack before reading its bytes.
  bool Fetch(DataStore& s, uint32_t pos, Bytes& out);
  void CopyOut(const Bytes& v, void* buf, long bufsiz, bool fixed, uint32_t reclen, long& len);
  // Makes the current key of index ordinal of p valid, rebuilding it from the current record.
  KeyPos& EnsureKey(Handle& data, Position& p, size_t ordinal);
  // Makes pos current with its whole record v (in the snapshot or in p.curSpace).
  void MakeCurrent(Handle& data, Position& p, uint32_t pos, const Bytes& v, int keptOrdinal);
  // Moves kp on index dbi; returns the position found or 0 (kp unchanged when none).
  uint32_t Step(Env& env, Db dbi, KeyPos& kp, int keylen, int dataLen, NavOp op,
                const uint8_t* target);

  bool active_ = false;
  struct HeldEnv {
    std::shared_ptr<Env> env;
    int joinLevel = 0;  // save points that existed when the environment joined
    bool durable = false;
  };
  struct SetLock {
    std::shared_ptr<Env> env;
    uint64_t key;
    int16_t owner;
  };
  std::vector<HeldEnv> held_;
  std::vector<SetLock> setLocks_;
  int lockMode_ = FREE;
  bool suspended_ = false;
  bool tranActive_ = false;
  int savepoints_ = 0;
  long tranNo_ = 0;
  int lockTimeoutMs_ = 5000;
  bool crashBetweenCommits_ = false;  // test hook CTISAM_TEST_CRASH_BETWEEN_COMMITS
  std::vector<std::unique_ptr<Handle>> files_;
  std::map<int, Context> contexts_;
  std::vector<uint8_t> scratch_;
  std::vector<uint8_t> packed_;    // a record's stored form on its way to the file
  std::vector<uint8_t> unpacked_;  // a stored record decoded (one not made current)
  // The open mode a commit on h is made with: OPS_FLUSH adds WRITETHRU to every file.
  void RekeyIndexes(Handle& h, const FileDef& def, const std::vector<size_t>& ordinals);
  int CommitMode(const Handle& h) const { return h.mode | (ops_ & OPS_FLUSH ? WRITETHRU : 0); }
  long ops_ = 0;
  std::vector<KeySet> sets_ = std::vector<KeySet>(1);
  size_t activeSet_ = 0;
  std::vector<BatchState> batches_ = std::vector<BatchState>(1);
  size_t activeBatch_ = 0;
  void FillBatch(BatchState& b, BatchRequest& req, void* buf, long bufsiz);
  void DeleteBatch(int keyno, BatchRequest& req);
};

// The process's one session.
Session& TheSession();

template <typename F>
void Session::Write(Handle& h, F&& f) {
  DataStore& s = *h.store;
  if (HoldingMode()) Join(h);
  for (int attempt = 0;; ++attempt) {
    try {
      WriteTxn w(s.env());
      s.CheckCurrent(w.Get());
      f(w.Get());
      w.Commit(s.Durable(CommitMode(h)));
      return;
    } catch (const Fail& e) {
      if (e.code == kStaleDefinition) Refresh(s);
      if (e.code != CT_EDISKFULL || e.sysio != 0 || attempt >= 8 || s.env().Holding()) throw;
    }
    s.env().Grow();
  }
}

}  // namespace cte
