// Schema: the engine's own (packing-independent) form of IFIL, IIDX, ISEG and the field list,
// their validation and their stored byte images.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cte {

struct SegDef {
  int16_t offset = 0;
  int16_t length = 0;
  int16_t mode = 0;
};

struct IndexDef {
  int16_t keylen = 0;
  int16_t keytype = 0;
  int16_t dup = 0;
  int16_t nulkey = 0;
  int16_t empchr = 0;
  std::vector<SegDef> segs;
  std::string name;      // ridxnam
  std::string fileName;  // aidxnam as given (empty: the set's shared index file)
  std::string file;      // name of the index file beside the data file, assigned at creation
  std::string cond;      // condition expression (empty: every record has a key)
  int16_t keydb = -1;    // number of the key database ("k<keydb>"), assigned when stored
  int16_t temp = 0;      // kTempIndex (TMPIIDXX until PRMIIDX) or kMappedIndex (setimap)
  std::vector<uint8_t> altseq;  // alternate collating sequence: 256 weights, or empty
};

constexpr int16_t kTempIndex = 1;    // added by TMPIIDXX and not yet made permanent
constexpr int16_t kMappedIndex = 2;  // an index file of its own mapped by setimap

struct FileDef {
  std::string name;  // pfilnam
  int16_t dfilno = -1;
  int16_t reclen = 0;
  int16_t dxtdsiz = 0;
  int16_t dfilmod = 0;
  int16_t ixtdsiz = 0;
  int16_t ifilmod = 0;
  std::vector<IndexDef> idx;
  std::string rfstfld, rlstfld;
  int16_t tfilno = -1;
};

struct FieldDef {
  std::string name;
  uint16_t type = 0;
  uint32_t len = 0;
};

// Throws Fail CT_EBADDEF when def is malformed: no name, a non-positive record length, an
// index without segments or with more than CT_MAXSEG, a byte segment beyond the record, a key
// longer than CT_MAXKEYLEN (CT_EKEYLEN) or shorter than its segments.
void Validate(const FileDef& def);

// Byte images kept in the data file (little-endian, length-prefixed strings). Parse throws
// Fail CT_EDAMAGED on a malformed image.
std::string Serialize(const FileDef& def);
FileDef ParseFileDef(const std::string& image);
std::string Serialize(const std::vector<FieldDef>& fields);
std::vector<FieldDef> ParseFields(const std::string& image);

// True for the variable-length field codes (146, 154, 162, 170).
bool IsVariable(uint16_t type);

}  // namespace cte
