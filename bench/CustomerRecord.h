// The customers table's record image and city names, shared by the benchmarks (bench).
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

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

}  // namespace bench
