// SetJournal: makes the commit of a lock set or transaction that wrote several files
// all-or-nothing when the process dies between the files' commits (see FORMAT.md, "Set journal").
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Env.h"

namespace cte {

// The undo journal of one logged file of a set (Env::Logged): its undo entries, kept in memory
// up to a bound and beyond it in "<file>.setspill", which the writer keeps locked (an OFD lock,
// which the kernel drops when the process dies). Sealed before the first file of the set
// commits, it becomes "<file>.setlog": the entries, then a trailer with the set id and the
// files of the set in commit order.
class SetJournal {
 public:
  // One file of a set as its end needs it.
  struct File {
    std::shared_ptr<Env> env;
    bool durable = false;
  };

  // The journal of the file at path; nothing is written until it spills or is sealed.
  explicit SetJournal(std::string path);
  // Removes the journal's file and drops its lock, unless Keep was called.
  ~SetJournal();
  SetJournal(const SetJournal&) = delete;
  SetJournal& operator=(const SetJournal&) = delete;

  // Appends undo entries (UndoLog bytes). Throws Fail CT_EIO when the spill file cannot be
  // written.
  void Append(const char* data, size_t n);

  // Ends the held transactions of files: with commit, commits them all (save points first
  // merged; several files: logged ones first, the unlogged one last, after the journals were
  // sealed), or aborts them all. Throws the first failure after every transaction ended; the
  // files are then as before the set (a partial commit is undone at once, or by the next
  // process that touches a file when even that fails). crashHook: exit right after the first
  // commit (test hook).
  static void End(std::vector<File> files, bool commit, bool crashHook);

  // True when a sealed journal lies next to the file at path.
  static bool Pending(const std::string& path);
  // Settles the journal next to env's file: waits (up to CTISAM_LOCK_TIMEOUT_MS) while its
  // writer lives and commits, then, when the writer died, undoes its set in this file unless
  // the set committed (its last file carries the set id), under the write transaction that
  // checks the file's set id, and removes the journal. A torn journal (written before any
  // commit) is only removed. forWrite: a time-out throws DTMO_ERR (a reader goes on instead).
  // Throws Fail when the file cannot be written (the journal stays for the next try).
  static void Settle(Env& env, bool forWrite);
  // Removes a spill file next to path left by a process that died inside its set.
  static void Sweep(const std::string& path);

 private:
  void Seal(uint64_t set, const std::vector<std::string>& files, size_t self);
  // Undoes the set in the committed file env (its set id still the set's).
  void RollBack(Env& env, uint64_t set);
  void Spill();
  std::string path_;
  std::string mem_;
  int fd_ = -1;
  uint64_t written_ = 0;  // entry bytes in the file
  uint64_t hash_;         // FNV-1a of everything written to the file
  bool sealed_ = false;
  bool keep_ = false;
};

}  // namespace cte
