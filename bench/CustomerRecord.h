// The customers the benchmarks generate: the record image, names, cities and the order of ids
// (bench).
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace bench {

#pragma pack(push, 1)
// The record image of the customers table (byte alignment). The engine reads the whole record
// length the connection gives the table, which is 10 bytes longer than its fields: the slack
// keeps those bytes inside the struct.
struct Customer {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
  char slack[10];
};
#pragma pack(pop)

constexpr int kCities = 50;

inline std::string CityOf(int32_t id) {
  char text[24];
  std::snprintf(text, sizeof text, "city%02d", id % kCities);
  return text;
}

/// A name in no relation to the id's order: "name" and seven digits of (id * 7919 + offset)
/// modulo 1,000,003, in int arithmetic as the benchmarks have always computed it. A different
/// `offset` gives a customer another name.
inline std::string ScrambledName(int32_t id, int offset = 0) {
  char text[32];
  std::snprintf(text, sizeof text, "name%07d", (id * 7919 + offset) % 1000003);
  return text;
}

/// Customer `id` named `name`, in city CityOf(id), with a balance of id / 4.
inline Customer MakeCustomer(int32_t id, const std::string& name) {
  Customer c{};
  c.id = id;
  std::snprintf(c.name, sizeof c.name, "%s", name.c_str());
  std::snprintf(c.city, sizeof c.city, "%s", CityOf(id).c_str());
  c.balance = id * 0.25;
  return c;
}

/// The ids first .. first + count - 1 shuffled by `random` (which the caller goes on drawing from).
inline std::vector<int32_t> ShuffledIds(int32_t first, int count, std::mt19937& random) {
  std::vector<int32_t> ids(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) ids[static_cast<size_t>(i)] = first + i;
  std::shuffle(ids.begin(), ids.end(), random);
  return ids;
}

}  // namespace bench
