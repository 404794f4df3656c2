// EngineCustomer: the customers record the engine's tests and its fuzz target store.
#pragma once

#include <cstdint>
#include <cstring>

// id int4 @0, name char[30] @4, city char[20] @34, balance double @54, date int4 @62; 66 bytes,
// never padded.
#pragma pack(push, 1)
struct Customer {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
  int32_t date;
};
#pragma pack(pop)
static_assert(sizeof(Customer) == 66);

inline Customer MakeCustomer(int id, const char* name, const char* city, double balance = 0, int date = 0) {
  Customer c{};
  c.id = id;
  std::strncpy(c.name, name, sizeof c.name);
  std::strncpy(c.city, city, sizeof c.city);
  c.balance = balance;
  c.date = date;
  return c;
}
