// Superfile: data and index files held as members of one Env (the host), named
// host "!" member, and the path helpers that treat a member like a file of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Env.h"
#include "FileLock.h"

namespace cte {

// The host and member parts of a path ("dir/host.sup!customers.dat"); member empty for a path
// that names no member.
struct Place {
  std::string host, member;
  bool IsMember() const { return !member.empty(); }
};
Place Locate(const std::string& path);

// The environment of superfile host; with create, a missing host is made. FNOP_ERR when missing,
// CT_EDAMAGED when the file is not a superfile host.
std::shared_ptr<Env> OpenHost(const std::string& host, bool create);
// True when path is an existing superfile host.
bool IsHost(const std::string& path);
// Adds member to the host's directory inside txn and returns its id (DCRAT_ERR when it exists).
uint32_t CreateMember(Env& env, Txn* txn, const std::string& member);
// The id of member, 0 when the host has none of that name.
uint32_t FindMember(Env& env, const std::string& member);
// The prefix of the database names of member id.
std::string MemberPrefix(uint32_t id);
// The member names of the host, in name order.
std::vector<std::string> ListMembers(Env& env);

// Path helpers for plain files and members alike.
bool PathExists(const std::string& path);
// Removes a file, or a member with all its databases; true when something was removed.
bool RemovePath(const std::string& path);
// Renames a file, or a member within its host (NSUP_ERR across hosts); DCRAT_ERR when the
// target exists.
void RenamePath(const std::string& from, const std::string& to);
// Throws NSUP_ERR when RenamePath would refuse to move from to `to` (across hosts, or between a
// member and a file of its own); changes nothing.
void CheckRenamePath(const std::string& from, const std::string& to);
// The file lock of a path: a member locks its host shared (the member's own open mode is a
// record-table lock, see Session::LockMember).
std::unique_ptr<FileLock> LockPath(const std::string& path, bool exclusive);

}  // namespace cte
