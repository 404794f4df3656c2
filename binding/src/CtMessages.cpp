// The binding layer's message table: storage error descriptions and the package's own messages.
#include "CtMessages.h"

#include <algorithm>
#include <iterator>

namespace CTDbIntf {

namespace {

struct TMessage {
  std::int32_t Ident;
  const char* Text;
};

// Sorted by number, one row per number. Rows quoted with the storage library's historic wording
// keep it exactly, misspellings and odd blanks included ("availble", the two blanks after
// "Seek error:", the trailing blank of 30129, "interefernce"): applications compare them. Every
// error number of the engine's header has a row; a test reads the header to keep it so.
constexpr TMessage kMessages[] = {
    {30002, "Key value already exists"},
    {30012, "Could not open file: not there or locked"},
    {30014, "File was not closed properly and must be rebuilt before use"},
    {30017, "Could not create file: it already exists or the path cannot be used"},
    {30022, "File number out of range"},
    {30033, "Record is not locked by this user"},
    {30035, "Seek error:  check sysiocod value"},
    {30039, "No more records availble"},
    {30042, "Could not obtain data record lock"},
    {30046, "File number already in use"},
    {30047, "c-tree has not been initialized"},
    {30048, "Invalid file mode or combination of file modes"},
    {30100, "No current record for isam datno"},
    {30101, "Could not find isam keyno request"},
    {30125, "c-tree already initialized"},
    {30129, "c-tree not initialized "},
    {30133, "Server is not active"},
    {30153, "Buffer too small for the variable-length record"},
    {30156, "timeout error"},
    {30160,
     "Multi-user interefernce: index information updated by the time user got to actual data "
     "record"},
    {30401, "The index has no condition"},
    {30408, "Resource not found in the data file (IFIL or DODA missing or empty)"},
    {30454, "Call not supported by this storage engine"},
    {30455, "Wrong file password"},
    {30801, "File was created by a library of another alignment"},
    {30802, "Malformed file or index definition"},
    {30803, "File is damaged or is not a file of this storage engine"},
    {30804, "Disk full: nothing was written"},
    {30805, "Key too long or too many key segments"},
    {30806, "Invalid argument: missing or too short buffer, or a value out of range"},
    {30807, "File number is not open"},
    {30808, "File number is not an index"},
    {30809, "File number is not a data file"},
    {30810, "File is open read-only"},
    {30811, "Storage I/O failure: check the system I/O code"},
    {30812, "Malformed condition expression"},
    {30813, "No such ISAM context"},
    {30814, "A resource of that type and number already exists"},
    {30815, "No transaction or lock set for this call, one already begun, or no such save point"},
    {30816, "Index file opened on its own: map it onto a data file first"},
    {30817, "The lock table of a file (its -rlock file) is damaged, of another version or full"},
    {30820, "Malformed parameter file: the system I/O code holds the line number"},

    {31101, "Beginning of the table"},
    {31102, "End of the table"},
    {31103, "Record longer than the storage limit of 32767 bytes"},
    {31104, "Value does not fit in the field: BCD holds 16 digits, money whole hundredths from -21474836.48 to 21474836.47"},
    {31110, "Procedure %s can not be found in %s"},
    {31111, "Unabled to load %s"},
    {31112, "Offset exceeds data size"},
    {31113, "Invalid cursor handle"},
    {31114, "No index files defined"},
    {31115, "No fields defined"},
    {31116, "Out of memory"},
    {31117, "Record corrupted"},
    {31118, "No CTree connection specified"},
    {31119, "No database path specified"},
    {31120, "No table name specified"},
    {31121, "Dataset not in edit or insert mode"},
    {31122, "Field '%s' cannot be modified"},
    {31123, "No Bookmark allocated"},
    {31124, "Field '%s' is not indexed and cannot be modified"},
    {31125, "Field index out of range"},
    {31126, "Cannot access index field '%s'"},
    {31127, "Field '%s' is not a blob field"},
    {31128, "Batch process already runs"},
    {31129, "No batch source defined"},
    {31130, "No batch destination defined"},
    {31131, "Batch source and destination are pointing to the same data"},
    {31132, "A unique index file is necessary for this operation"},
    {31133, "All files (*.*)|*.*|CTree data files (*.dat)|*.dat"},
    {31134, "Duplicate index name '%s'"},
    {31135, "Data has been modified possibly by another user"},
    {31136, "File alignment does not match alignment property: '%s'"},
    {31137, "Invalid index descriptor"},
};

constexpr bool IsSortedUnique() {
  for (std::size_t i = 1; i < std::size(kMessages); ++i)
    if (kMessages[i - 1].Ident >= kMessages[i].Ident) return false;
  return true;
}
static_assert(IsSortedUnique(), "the message table must be sorted by number, without repeats");

}  // namespace

std::optional<std::string_view> CtMessage(std::int32_t ident) {
  const auto* end = std::end(kMessages);
  const auto* found = std::lower_bound(
      std::begin(kMessages), end, ident,
      [](const TMessage& message, std::int32_t value) { return message.Ident < value; });
  if (found == end || found->Ident != ident) return std::nullopt;
  return std::string_view(found->Text);
}

}  // namespace CTDbIntf
