// IfilImage: packed IFIL/IIDX/ISEG record images in the engine's packings 1, 2 and 4 (driver).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "IfilDefinition.h"

namespace Ctdb {

/// The image of an IFIL with its IIDX and ISEG arrays and its names, laid out in one block in
/// the packing (1, 2 or 4) of the library variant that reads it. The pointers inside point into
/// the block, so the image stays valid while this object lives and is not copied.
class IfilImage {
 public:
  /// Builds the image of `def` in `packing`; an unknown packing is taken as 1.
  IfilImage(const IfilDefinition& def, int packing);
  IfilImage(const IfilImage&) = delete;
  IfilImage& operator=(const IfilImage&) = delete;

  /// The IFIL record, to hand to the engine's IFIL calls.
  void* Data() { return FBlock.data(); }
  /// Bytes in the image.
  size_t Size() const { return FBlock.size() * sizeof(uint64_t); }
  /// The IFIL's `tfilno` as it stands now (the engine writes the assigned number there).
  int16_t tfilno() const;

 private:
  std::vector<uint64_t> FBlock;  // 8-byte elements keep every record of the block aligned
  int FPacking;
};

/// Decodes an IFIL image as the engine hands it out (GETIFIL: an IFIL followed by its IIDX,
/// ISEG and names, the pointers pointing into `data`). Returns false, leaving `out` unspecified,
/// when the image is shorter than an IFIL, a count is out of range, or a pointer or a name
/// reaches outside the `size` bytes at `data`.
bool DecodeIfilImage(const uint8_t* data, size_t size, int packing, IfilDefinition& out);

/// One field of a table schema (the engine's DATOBJ, without its unused members).
struct DodaEntry {
  std::string Name;
  uint16_t Type = 0;    ///< c-tree type code.
  uint32_t Length = 0;  ///< Length in the record.
};

/// Decodes a field list as GETDODA mode 4 hands it out: the DATOBJ records followed by the
/// names they point to. The record count follows from where the names begin (the lowest name
/// pointer). Returns false when a record, a name pointer or a name reaches outside the `size`
/// bytes at `data`, or a name points into the records.
bool DecodeDodaImage(const uint8_t* data, size_t size, int packing, std::vector<DodaEntry>& out);

/// A packed DATOBJ array with its names in one block, for PUTDODA.
class DodaImage {
 public:
  DodaImage(const std::vector<DodaEntry>& entries, int packing);
  DodaImage(const DodaImage&) = delete;
  DodaImage& operator=(const DodaImage&) = delete;

  void* Data() { return FBlock.data(); }
  /// Bytes in the image.
  size_t Size() const { return FBlock.size() * sizeof(uint64_t); }

 private:
  std::vector<uint64_t> FBlock;
};

}  // namespace Ctdb
