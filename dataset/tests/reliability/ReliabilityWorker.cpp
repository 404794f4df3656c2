// reliability_worker: one program of the reliability tests, started fresh (its own engine
// instance, as another program would be) and told what to do by its arguments:
//   writer DIR SIDEFILE FIRSTID PERTX HOW
//                                      adds ids to tables "left" and "right", PERTX ids at a time,
//                                      grouped as HOW says: "both" one transaction over both
//                                      tables, "each" one transaction per table (left, then right),
//                                      "lockset" one engine lock set over both tables whose records
//                                      go in with the engine's add call; after the group ends it
//                                      appends the ids to SIDEFILE and fsyncs it; runs until killed
//   reader DIR                         reads both tables from start to end until killed
//   increment DIR COUNT RECORDS TX     adds 1 to COUNT at COUNTERS records picked in turn, each
//                                      through FindKey, Edit and Post (in a transaction of its own
//                                      when TX is 1), trying again after a refusal (42, 156, 1135)
//   opposite DIR FIRST                 one transaction that edits counter 1 of table FIRST, waits,
//                                      then counter 2 of the other table
// Exits 0 when done, or with the error number that stopped it (numbers above 255 as 255).
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

#include "CTDbIntf.h"
#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TField.h"
#include "ctisam.h"

namespace {

using CTTables::TCTTable;

constexpr int32_t kLocked = 42;
constexpr int32_t kTimedOut = 156;
constexpr int32_t kChangedSinceRead = 1135;

TCTTable* OpenTable(fw::TComponent* owner, Ctdb::TCTConnection* conn, const std::string& dir, const char* name) {
  auto* table = new TCTTable(owner);
  table->SetConnection(conn);
  table->SetDatabase(dir);
  table->SetTableName(name);
  table->Open();
  return table;
}

// The record image of (id, "n<id>", 0) for `table`, laid out by its cursor's field offsets.
std::vector<uint8_t> RecordImage(TCTTable& table, int32_t id) {
  Ctdb::TCTCursorDesc* cursor = table.Cursor();
  Ctdb::TCTCustomRecordBuffer buffer(cursor);
  buffer.InitRecord();
  std::vector<uint8_t> image(buffer.RecordPtr(), buffer.RecordPtr() + buffer.RecordSize());
  const std::string name = "n" + std::to_string(id);
  for (const auto& field : cursor->Fields) {
    if (field->Name == "ID") std::memcpy(image.data() + field->Offset, &id, sizeof id);
    if (field->Name == "NAME") std::memcpy(image.data() + field->Offset, name.data(), name.size());
  }
  return image;
}

// Adds ids next .. next + count - 1 to both tables in one engine lock set: the set's writes to
// both files become visible together at FREE, or not at all.
void AddInLockSet(TCTTable& left, TCTTable& right, int32_t next, int count) {
  const CTDbIntf::TLoadAlignment a = left.Connection()->Alignment();
  if (const int16_t rc = CTDbIntf::LockISAM(a, ENABLE)) CTDbIntf::CtError(rc);
  for (int i = 0; i < count; ++i)
    for (TCTTable* table : {&left, &right}) {
      std::vector<uint8_t> image = RecordImage(*table, next + i);
      if (const int16_t rc = CTDbIntf::AddRecord(a, table->Cursor()->DataFileNo, image.data()))
        CTDbIntf::CtError(rc);
    }
  if (const int16_t rc = CTDbIntf::LockISAM(a, FREE)) CTDbIntf::CtError(rc);
}

void AddInTransaction(Ctdb::TCTConnection& conn, std::initializer_list<TCTTable*> tables, int32_t next, int count) {
  conn.StartTransaction();
  for (int i = 0; i < count; ++i)
    for (TCTTable* table : tables)
      table->AppendRecord({fw::Variant(next + i), fw::Variant("n" + std::to_string(next + i)), fw::Variant(0)});
  conn.Commit();
}

int Writer(Ctdb::TCTConnection& conn, TCTTable& left, TCTTable& right, const std::string& side, int32_t next,
           int perGroup, const std::string& how) {
  if (how != "both" && how != "each" && how != "lockset") return 2;
  const int fd = ::open(side.c_str(), O_WRONLY | O_APPEND | O_CREAT, 0644);
  if (fd < 0) return 3;
  for (;;) {
    if (how == "both") {
      AddInTransaction(conn, {&left, &right}, next, perGroup);
    } else if (how == "each") {
      AddInTransaction(conn, {&left}, next, perGroup);
      AddInTransaction(conn, {&right}, next, perGroup);
    } else {
      AddInLockSet(left, right, next, perGroup);
    }
    for (int i = 0; i < perGroup; ++i) {
      const int32_t id = next + i;
      if (::write(fd, &id, sizeof id) != static_cast<ssize_t>(sizeof id)) return 3;
    }
    if (::fsync(fd) != 0) return 3;
    next += perGroup;
  }
}

int Reader(TCTTable& left, TCTTable& right) {
  for (;;)
    for (TCTTable* table : {&left, &right}) {
      table->Refresh();
      for (table->First(); !table->Eof(); table->Next()) table->FieldByName("ID")->AsInteger();
    }
}

// Adds 1 to the counter of record `id`; false when another program's lock or change refused it
// (the edit and any transaction are then undone, to be tried again).
bool Increment(Ctdb::TCTConnection& conn, TCTTable& table, int32_t id, bool transaction) {
  try {
    if (transaction) conn.StartTransaction();
    if (!table.FindKey({fw::Variant(id)})) std::exit(4);
    table.Edit();
    table.FieldByName("COUNTER")->SetAsInteger(table.FieldByName("COUNTER")->AsInteger() + 1);
    table.Post();
    if (transaction) conn.Commit();
    return true;
  } catch (const CTDbIntf::ECtreeException& e) {
    if (e.ErrorCode != kLocked && e.ErrorCode != kTimedOut && e.ErrorCode != kChangedSinceRead) throw;
    if (table.State() != fw::dsBrowse) table.Cancel();
    if (conn.InTransaction()) conn.Rollback();
    std::this_thread::yield();
    return false;
  }
}

int Run(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::string mode = argv[1];
  const std::string dir = argv[2];
  fw::TComponentPtr<fw::TComponent> owner(new fw::TComponent(nullptr));
  auto* conn = new Ctdb::TCTConnection(owner.get());
  conn->SetActive(true);
  TCTTable* left = OpenTable(owner.get(), conn, dir, "left");
  TCTTable* right = OpenTable(owner.get(), conn, dir, "right");
  if (mode == "writer" && argc == 7)
    return Writer(*conn, *left, *right, argv[3], std::atoi(argv[4]), std::atoi(argv[5]), argv[6]);
  if (mode == "reader") return Reader(*left, *right);
  if (mode == "increment" && argc == 6) {
    const int count = std::atoi(argv[3]), records = std::atoi(argv[4]);
    const bool transaction = std::atoi(argv[5]) != 0;
    for (int done = 0; done < count;)
      if (Increment(*conn, *left, 1 + (done + ::getpid()) % records, transaction)) ++done;
    return 0;
  }
  if (mode == "opposite" && argc == 4) {
    const bool leftFirst = std::string(argv[3]) == "left";
    conn->StartTransaction();
    TCTTable* const order[] = {leftFirst ? left : right, leftFirst ? right : left};
    for (int32_t id : {1, 2}) {
      TCTTable* table = order[id - 1];
      if (!table->FindKey({fw::Variant(id)})) return 4;
      table->Edit();
      table->FieldByName("COUNTER")->SetAsInteger(table->FieldByName("COUNTER")->AsInteger() + 1);
      table->Post();
      std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }
    conn->Commit();
    return 0;
  }
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const CTDbIntf::ECtreeException& e) {
    std::fprintf(stderr, "reliability_worker %s: %s\n", argc > 1 ? argv[1] : "", e.what());
    return e.ErrorCode > 0 && e.ErrorCode < 255 ? e.ErrorCode : 255;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "reliability_worker %s: %s\n", argc > 1 ? argv[1] : "", e.what());
    return 1;
  }
}
