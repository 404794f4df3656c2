// The customers table of the benchmarks through the driver: its layout, filling it, its files
// for the engine calls and its fields through TCTTable (bench).
#pragma once

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "CTTables.h"
#include "CtError.h"
#include "CtRecords.h"
#include "Ctdb.h"
#include "CustomerRecord.h"
#include "TField.h"

namespace bench {

/// The NAME of customer `id`: "name" and the id in seven digits.
inline std::string CustomerName(int32_t id) {
  char text[32];
  std::snprintf(text, sizeof text, "name%07d", id);
  return text;
}

/// The index the table has beside the unique, primary ById on ID (key number data + 1). Its key
/// number is data + 2.
enum class CityIndex {
  kNone,      // ById only
  kCityId,    // ByCity on CITY+ID, unique
  kCityName,  // ByCity on CITY+NAME, duplicates allowed
};

/// Creates table `name` in `dir` (replacing one of that name), empty: ID (integer), NAME (30),
/// CITY (20) and BALANCE (float), indexed by ID ("ById") and as `city` says. Raises
/// ECtreeException on failure.
inline void CreateCustomersTable(Ctdb::TCTConnection& conn, const std::string& dir, const std::string& name,
                                 CityIndex city) {
  auto field = [](uint16_t no, const char* fieldName, int16_t type, int16_t subType, int16_t length) {
    Ctdb::CTFldDesc desc;
    desc.FieldNo = no;
    desc.Name = fieldName;
    desc.FieldType = type;
    desc.SubType = subType;
    desc.Units1 = length;
    desc.Length = length;
    return desc;
  };
  Ctdb::CTTblDesc desc;
  desc.Name = name;
  desc.TableType = "CTree";
  desc.Fields = {field(1, "ID", Ctdb::fldINT32, 0, 4), field(2, "NAME", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 30),
                 field(3, "CITY", Ctdb::fldZSTRING, Ctdb::fldstFSTRING, 20), field(4, "BALANCE", Ctdb::fldFLOAT, 0, 8)};
  Ctdb::CTIdxDesc byId;
  byId.Name = "ById";
  byId.Unique = byId.Primary = byId.Maintained = Ctdb::kWordTrue;
  byId.KeyFields[0] = 1;
  byId.FieldsInKey = 1;
  desc.Indexes = {byId};
  if (city != CityIndex::kNone) {
    Ctdb::CTIdxDesc byCity = byId;
    byCity.Name = "ByCity";
    byCity.Primary = Ctdb::kWordFalse;
    if (city == CityIndex::kCityName) byCity.Unique = Ctdb::kWordFalse;
    byCity.KeyFields[0] = 3;
    byCity.KeyFields[1] = city == CityIndex::kCityName ? 2 : 1;
    byCity.FieldsInKey = 2;
    desc.Indexes.push_back(byCity);
  }
  CTDbIntf::CtError(conn.CreateTable(dir, true, desc));
}

/// Adds customers make(1) to make(records) to table `name` in `dir` through the engine calls, in
/// id order, committing a transaction every `batch` records. Raises ECtreeException on failure.
template <typename Make>
void FillCustomers(Ctdb::TCTConnection& conn, const std::string& dir, const std::string& name, int records,
                   int batch, Make&& make) {
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  CTDbIntf::CtError(conn.OpenCursor(cursor, name, dir, 0));
  for (int32_t id = 1; id <= records; ++id) {
    if ((id - 1) % batch == 0) conn.StartTransaction();
    Customer c = make(id);
    CTDbIntf::CtError(CTDbIntf::AddRecord(conn.Alignment(), cursor->DataFileNo, &c));
    if (id % batch == 0 || id == records) conn.Commit();
  }
  CTDbIntf::CtError(conn.CloseCursor(cursor));
}

/// Creates table `name` with the CITY+ID index and adds customers 1 to `records` named
/// CustomerName(id), in transactions of 5,000.
inline void CreateCustomers(Ctdb::TCTConnection& conn, const std::string& dir, int records,
                            const std::string& name = "customers") {
  CreateCustomersTable(conn, dir, name, CityIndex::kCityId);
  FillCustomers(conn, dir, name, records, 5000, [](int32_t id) { return MakeCustomer(id, CustomerName(id)); });
}

/// The data file and key numbers of a customers table for the engine calls alone. Opened by
/// name, it holds a cursor of its own, closed by Close or the destructor; given the number of a
/// file already open (by a TCTTable holding it exclusively), it opens nothing.
struct EngineCustomers {
  Ctdb::TCTConnection* conn = nullptr;
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  int16_t dat = -1;
  int16_t byId = -1;
  int16_t byCity = -1;

  EngineCustomers(Ctdb::TCTConnection& connection, const std::string& dir, const std::string& name)
      : conn(&connection) {
    CTDbIntf::CtError(conn->OpenCursor(cursor, name, dir, 0));
    Number(cursor->DataFileNo);
  }
  explicit EngineCustomers(int16_t dataFile) { Number(dataFile); }
  EngineCustomers(const EngineCustomers&) = delete;
  EngineCustomers& operator=(const EngineCustomers&) = delete;
  ~EngineCustomers() {
    if (cursor != nullptr) static_cast<void>(conn->CloseCursor(cursor));
  }

  /// Closes the cursor, raising ECtreeException on failure.
  void Close() {
    if (cursor != nullptr) CTDbIntf::CtError(conn->CloseCursor(cursor));
  }

 private:
  void Number(int16_t dataFile) {
    dat = dataFile;
    byId = static_cast<int16_t>(dat + 1);
    byCity = static_cast<int16_t>(dat + 2);
  }
};

/// ID, NAME, CITY and BALANCE of an open customers TCTTable, in that order.
inline std::array<fw::TField*, 4> CustomerFields(CTTables::TCTTable& table) {
  return {table.FieldByName("ID"), table.FieldByName("NAME"), table.FieldByName("CITY"),
          table.FieldByName("BALANCE")};
}

/// Reads every field of the current record as an application would, so that the compiler
/// cannot drop the reads.
inline double ReadFields(const std::array<fw::TField*, 4>& fields) {
  return fields[0]->AsInteger() + static_cast<double>(fields[1]->AsString().size() + fields[2]->AsString().size()) +
         fields[3]->AsFloat();
}

}  // namespace bench
