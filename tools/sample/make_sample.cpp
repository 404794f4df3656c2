// ctt_sample: writes the sample customers and their orders as CSV, the same bytes on every run.
//
//   ctt_sample DIR [CUSTOMERS [ORDERS]]    writes DIR/customers.csv and DIR/orders.csv
//
// The values come from a fixed-seed generator of our own (the standard distributions are not
// the same on every library), so that the demo and its documentation show the same records.
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "CsvWriter.h"

namespace {

// SplitMix64: small, fast and fully specified.
class Random {
 public:
  explicit Random(std::uint64_t seed) : FState(seed) {}
  std::uint64_t Next() {
    std::uint64_t z = (FState += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  // A number from 0 to n - 1.
  std::uint64_t Below(std::uint64_t n) { return Next() % n; }
  template <typename T>
  const T& Pick(const std::vector<T>& items) { return items[Below(items.size())]; }

 private:
  std::uint64_t FState;
};

const std::vector<std::string> kFirst{
    "Anna", "Ben", "Clara", "David", "Elif", "Farid", "Greta", "Hugo", "Ines", "Jonas", "Karin", "Luis",
    "Maja", "Nils", "Olga", "Paul", "Quentin", "Rosa", "Sven", "Tara", "Ugo", "Vera", "Wim", "Yara", "Zoe"};
const std::vector<std::string> kLast{
    "Andersen", "Berg", "Costa", "Dubois", "Eriksen", "Fischer", "Garcia", "Hansen", "Ivanova", "Jensen",
    "Kowalski", "Larsen", "Moreau", "Nowak", "O'Neill", "Petit", "Quist", "Rossi", "Schmidt", "Tanaka",
    "Urban", "Vogel", "Weber", "Young", "Zimmer"};
const std::vector<std::string> kCities{
    "Aarhus", "Bergen", "Cork", "Dresden", "Eindhoven", "Florence", "Graz", "Helsinki", "Innsbruck",
    "Krakow", "Lyon", "Malmo", "Nantes", "Oslo", "Porto", "Reykjavik", "Seville", "Tallinn", "Utrecht", "Vilnius"};
const std::vector<std::string> kCompanies{
    "", "", "", "Berg & Sons", "Costa, Lima and Partners", "Brindlewick Tooling Ltd", "\"Tarnvik Fjord\" Traders",
    "Quellmoor Feinmechanik GmbH", "", "Petit et Fils"};
const std::vector<std::string> kStatus{"open", "paid", "paid", "paid", "shipped", "shipped", "cancelled"};

std::string TwoDigits(int n) { return (n < 10 ? "0" : "") + std::to_string(n); }

std::string Date(int year, int month, int day) {
  return std::to_string(year) + "-" + TwoDigits(month) + "-" + TwoDigits(day);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 4) {
    std::cerr << "usage: ctt_sample DIR [CUSTOMERS [ORDERS]]\n";
    return 2;
  }
  const std::string dir = argv[1];
  const long customers = argc > 2 ? std::stol(argv[2]) : 3000;
  const long orders = argc > 3 ? std::stol(argv[3]) : 12000;
  if (customers < 1 || orders < 0) {
    std::cerr << "ctt_sample: the counts must be positive\n";
    return 2;
  }
  Random random(20261123);

  std::ofstream customerFile(dir + "/customers.csv", std::ios::binary);
  std::ofstream orderFile(dir + "/orders.csv", std::ios::binary);
  if (!customerFile || !orderFile) {
    std::cerr << "ctt_sample: cannot write into " << dir << '\n';
    return 3;
  }
  ctt::CsvWriter customerCsv(customerFile);
  customerCsv.WriteRow({"id", "name", "company", "city", "email", "since", "note"});
  for (long id = 1; id <= customers; ++id) {
    const std::string first = random.Pick(kFirst);
    const std::string last = random.Pick(kLast);
    std::string email = first + "." + last + "@example.com";
    for (char& c : email) c = (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : (c == '\'' ? '_' : c);
    // Every 97th customer carries a note over two lines, so the CSV holds quoted line breaks.
    const std::string note = id % 97 == 0 ? "call before delivery\nback door" : "";
    customerCsv.WriteRow({std::to_string(id), last + ", " + first, random.Pick(kCompanies), random.Pick(kCities),
                          email, Date(2015 + static_cast<int>(random.Below(11)), 1 + static_cast<int>(random.Below(12)),
                                      1 + static_cast<int>(random.Below(28))),
                          note});
  }
  ctt::CsvWriter orderCsv(orderFile);
  orderCsv.WriteRow({"orderno", "customer", "ordered", "amount", "status"});
  for (long n = 1; n <= orders; ++n) {
    const std::uint64_t cents = 500 + random.Below(250000);
    char amount[32];
    std::snprintf(amount, sizeof amount, "%llu.%02llu", static_cast<unsigned long long>(cents / 100),
                  static_cast<unsigned long long>(cents % 100));
    orderCsv.WriteRow({std::to_string(100000 + n), std::to_string(1 + random.Below(customers)),
                       Date(2024 + static_cast<int>(random.Below(3)), 1 + static_cast<int>(random.Below(12)),
                            1 + static_cast<int>(random.Below(28))),
                       amount, random.Pick(kStatus)});
  }
  customerFile.close();
  orderFile.close();
  if (!customerFile || !orderFile) {
    std::cerr << "ctt_sample: writing into " << dir << " failed\n";
    return 3;
  }
  std::cout << "wrote " << customers << " customers and " << orders << " orders into " << dir << '\n';
  return 0;
}
