// reliability_worker: one program of the reliability tests, started fresh (its own engine
// instance, as another program would be) and told what to do by its arguments:
//   writer DIR SIDEFILE FIRSTID PERTX  adds ids to tables "left" and "right" in transactions of
//                                      PERTX records each (one transaction over both tables) and,
//                                      after each Commit returns, appends the ids to SIDEFILE and
//                                      fsyncs it; runs until killed
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
#include <string>
#include <thread>

#include "CTTables.h"
#include "Ctdb.h"
#include "ECtreeException.h"
#include "TField.h"

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

int Writer(Ctdb::TCTConnection& conn, TCTTable& left, TCTTable& right, const std::string& side, int32_t next,
           int perTransaction) {
  const int fd = ::open(side.c_str(), O_WRONLY | O_APPEND | O_CREAT, 0644);
  if (fd < 0) return 3;
  for (;;) {
    conn.StartTransaction();
    for (int i = 0; i < perTransaction; ++i)
      for (TCTTable* table : {&left, &right})
        table->AppendRecord({fw::Variant(next + i), fw::Variant("n" + std::to_string(next + i)), fw::Variant(0)});
    conn.Commit();
    for (int i = 0; i < perTransaction; ++i) {
      const int32_t id = next + i;
      if (::write(fd, &id, sizeof id) != static_cast<ssize_t>(sizeof id)) return 3;
    }
    if (::fsync(fd) != 0) return 3;
    next += perTransaction;
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
  if (mode == "writer" && argc == 6) return Writer(*conn, *left, *right, argv[3], std::atoi(argv[4]), std::atoi(argv[5]));
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
