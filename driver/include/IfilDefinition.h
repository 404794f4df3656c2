// IfilDefinition: a table's c-tree file definition (IFIL) independent of record packing (driver).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Ctdb {

/// One key segment (the engine's ISEG).
struct IsegDefinition {
  int16_t soffset = 0;  ///< Byte offset in the record, or 0-based field number for schema modes.
  int16_t slength = 0;  ///< Length of the segment in the key.
  int16_t segmode = 0;  ///< Segment mode, with the descending (16) and alternate (32) bits.
};

/// One index (the engine's IIDX). Absent names are empty optionals, as null pointers are.
struct IidxDefinition {
  int16_t ikeylen = 0;
  int16_t ikeytyp = 0;
  int16_t ikeydup = 0;  ///< 1 when the index allows duplicates.
  int16_t inulkey = 0;
  int16_t iempchr = 0;
  std::vector<IsegDefinition> seg;    ///< `inumseg` is its size.
  std::optional<std::string> ridxnam;  ///< Symbolic index name.
  std::optional<std::string> aidxnam;  ///< Index file name, when not in the first index's file.
};

/// A data file with its indexes (the engine's IFIL). The record images handed to the engine
/// are built from it in the packing of the connection's `Alignment`.
struct IfilDefinition {
  std::string pfilnam;  ///< Data file name without extension.
  int16_t dfilno = -1;  ///< Wanted file number; -1 lets the engine choose.
  int16_t dreclen = 0;
  int16_t dxtdsiz = 0;
  int16_t dfilmod = 0;
  int16_t ixtdsiz = 0;
  int16_t ifilmod = 0;
  std::vector<IidxDefinition> ix;  ///< `dnumidx` is its size.
  std::optional<std::string> rfstfld;
  std::optional<std::string> rlstfld;
  int16_t tfilno = -1;  ///< Receives the number the engine assigned.
};

}  // namespace Ctdb
