// CTTblDesc: the definition of a table to create (driver, unit Ctdb).
#pragma once

#include <cstdint>
#include <string>

#include "CTFldDesc.h"
#include "CTIdxDesc.h"

namespace Ctdb {

/// A table to create: its name and type text, then its fields and indexes. The connection's
/// table-creation routine reads it; the dataset layer fills it from field and index definitions.
struct CTTblDesc {
  std::string Name;         ///< Table name (a file name, possibly host "!" member).
  std::string TableType;    ///< Always "CTree".
  std::string Description;  ///< Free text; not stored in the files.
  int32_t TableFlags = 0;   ///< c-tree file-mode bits merged into the data file's mode.
  TFieldDescList Fields;    ///< Field descriptors in field order.
  TIndexDescList Indexes;   ///< Index descriptors; the first is the primary index.
};

}  // namespace Ctdb
