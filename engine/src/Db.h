// Db: the handle of one named database (a record store, a key store, a meta store) of an Env.
#pragma once

namespace cte {

// Opaque: given by Env::Dbi and valid for that Env until Forget, ForgetAll or an aborted
// transaction that opened it.
using Db = unsigned;

// Flags of a database, given when it is opened (Env::Dbi). Their values are part of the undo
// entries a set journal keeps on disk (UndoLog): they must never change.
// kIntegerKeys: keys are native unsigned integers (record positions), ordered by value.
constexpr unsigned kIntegerKeys = 0x08;

}  // namespace cte
