// The customers table of the benchmarks, created and filled through the driver (bench).
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "CtError.h"
#include "CtRecords.h"
#include "Ctdb.h"
#include "CustomerRecord.h"

namespace bench {

/// The NAME of customer `id`: "name" and the id in seven digits.
inline std::string CustomerName(int32_t id) {
  char text[32];
  std::snprintf(text, sizeof text, "name%07d", id);
  return text;
}

/// Creates table `name` in `dir` (replacing one of that name): ID (integer), NAME (30), CITY (20)
/// and BALANCE (float), indexed by ID (unique, "ById") and CITY+ID ("ByCity"), and adds customers
/// 1 to `records` in id order, in transactions of 5,000. Raises ECtreeException on failure.
inline void CreateCustomers(Ctdb::TCTConnection& conn, const std::string& dir, int records,
                            const std::string& name = "customers") {
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
  Ctdb::CTIdxDesc byCity = byId;
  byCity.Name = "ByCity";
  byCity.Primary = Ctdb::kWordFalse;
  byCity.KeyFields[0] = 3;
  byCity.KeyFields[1] = 1;
  byCity.FieldsInKey = 2;
  desc.Indexes = {byId, byCity};
  CTDbIntf::CtError(conn.CreateTable(dir, true, desc));

  constexpr int kBatch = 5000;
  std::unique_ptr<Ctdb::TCTCursorDesc> cursor;
  CTDbIntf::CtError(conn.OpenCursor(cursor, name, dir, 0));
  for (int32_t id = 1; id <= records; ++id) {
    if ((id - 1) % kBatch == 0) conn.StartTransaction();
    Customer c{};
    c.id = id;
    std::snprintf(c.name, sizeof c.name, "%s", CustomerName(id).c_str());
    std::snprintf(c.city, sizeof c.city, "%s", CityOf(id).c_str());
    c.balance = id * 0.25;
    CTDbIntf::CtError(CTDbIntf::AddRecord(conn.Alignment(), cursor->DataFileNo, &c));
    if (id % kBatch == 0 || id == records) conn.Commit();
  }
  CTDbIntf::CtError(conn.CloseCursor(cursor));
}

}  // namespace bench
