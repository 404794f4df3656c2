// SetJournal: makes the commit of a lock set or transaction that wrote several files
// all-or-nothing when the process dies between the files' commits (see FORMAT.md, "Set journal").
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Lmdb.h"

namespace cte {

// The journal of one multi-file set: a random set id, written into every file's commit, and
// for every file the undo log of its writes. A copy is written next to every file of the set as
// "<file>.setlog", so that opening any of them finds it.
class SetJournal {
 public:
  // Marks the held transactions of envs (two or more, all holding, nested levels committed)
  // with a fresh set id, captures their undo logs and writes the copies, flushed to disk,
  // before any of them commits. Throws Fail CT_EIO when a copy cannot be
  // written (nothing has committed then).
  explicit SetJournal(const std::vector<std::shared_ptr<Env>>& envs);
  // Removes the copies: every file committed, or the set was rolled back.
  void Remove();
  // Rolls back the files that committed (their undo logs applied and flushed), then removes
  // the copies. Used when a commit failed after others succeeded.
  void RollBack();

  // Run on open of path: when "<path>.setlog" is left by a process that died between the
  // commits of a set, undoes the set in every file that committed it, then removes the copies.
  // A torn or unreadable journal was written before any commit and is only removed. Throws
  // Fail when a file of the set cannot be opened or written (the journal is kept for the next
  // open).
  static void Recover(const std::string& path);

 private:
  struct File {
    std::string path;
    std::vector<Env::Undo> undo;
  };
  SetJournal() = default;
  std::string Encode() const;
  static bool Decode(const std::string& bytes, SetJournal& out);
  // Applies the undo log to every file whose last commit is the set's (read from a fresh
  // environment of each file).
  void Undo();
  uint64_t set_ = 0;
  std::vector<File> files_;
};

}  // namespace cte
