/* ctdemo: a customers table on the embedded engine, loaded the way the package loads it.
 * Creates customers.dat/.idx in the current directory, adds 300 customers, lists a few in each
 * key order, and shows the record count and the number of customers in one city. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "ctisam.h"

#pragma pack(push, 1)
typedef struct {
  int32_t id;
  char name[30];
  char city[20];
  double balance;
} Customer;
#pragma pack(pop)

static const char* const kCities[] = {"Bergen", "Lyon", "Porto", "Graz", "Turku"};

#define BIND(name) __typeof__(&name) p##name = (__typeof__(&name))dlsym(lib, #name)

int main(void) {
  void* lib = dlopen("libctstd32b.so", RTLD_NOW | RTLD_LOCAL);
  if (!lib) {
    fprintf(stderr, "cannot load the engine: %s\n", dlerror());
    return 1;
  }
  BIND(INTISAMX); BIND(CREIFIL); BIND(ADDREC); BIND(FRSREC); BIND(NXTREC); BIND(DATENT);
  BIND(RNGENT); BIND(CLISAM); BIND(GetCtreeError);
  if (!pINTISAMX || !pCREIFIL || !pADDREC || !pFRSREC || !pNXTREC || !pDATENT || !pRNGENT ||
      !pCLISAM || !pGetCtreeError) {
    fprintf(stderr, "the engine lacks an entry point\n");
    return 1;
  }

  /* Index 0: id, unique. Index 1: city then name, duplicates allowed (key + 4-byte position). */
  ISEG byId[1] = {{0, 4, SGNSEG}};
  ISEG byCity[2] = {{34, 20, REGSEG}, {4, 30, REGSEG}};
  IIDX idx[2] = {{4, 0, 0, 0, 0, 1, byId, "by_id", NULL, NULL, NULL},
                 {54, 0, 1, 0, 0, 2, byCity, "by_city", NULL, NULL, NULL}};
  IFIL ifil = {"customers", -1, sizeof(Customer), 0, EXCLUSIVE, 2, 0, EXCLUSIVE, idx, NULL, NULL, -1};

  COUNT rc = pINTISAMX(10, 32, 4, 10, 0, NULL, NULL, NULL);
  if (rc == 0) rc = pCREIFIL(&ifil);
  if (rc != 0) {
    fprintf(stderr, "cannot create customers: error %d\n", rc);
    return 1;
  }
  COUNT dat = ifil.tfilno;
  for (int i = 0; i < 300 && rc == 0; ++i) {
    Customer c;
    memset(&c, 0, sizeof c);
    c.id = (i * 37) % 300 + 1; /* added out of order on purpose */
    snprintf(c.name, sizeof c.name, "Customer %03d", c.id);
    snprintf(c.city, sizeof c.city, "%s", kCities[c.id % 5]);
    c.balance = c.id * 12.5;
    rc = pADDREC(dat, &c);
  }
  if (rc != 0) {
    fprintf(stderr, "add failed: error %d\n", rc);
    return 1;
  }

  Customer c;
  printf("First five by id:\n");
  rc = pFRSREC(dat + 1, &c);
  for (int n = 0; n < 5 && rc == 0; ++n, rc = pNXTREC(dat + 1, &c))
    printf("  %4d  %-14s %-8s %9.2f\n", c.id, c.name, c.city, c.balance);
  printf("First five by city and name:\n");
  rc = pFRSREC(dat + 2, &c);
  for (int n = 0; n < 5 && rc == 0; ++n, rc = pNXTREC(dat + 2, &c))
    printf("  %-8s %-14s %4d\n", c.city, c.name, c.id);

  /* Every key of city Lyon: the city padded with zero bytes, then the lowest / highest name
   * and position. */
  unsigned char low[54], high[54];
  memset(low, 0, sizeof low);
  memset(high, 0xFF, sizeof high);
  memset(high, 0, 20);
  strcpy((char*)low, "Lyon");
  strcpy((char*)high, "Lyon");
  printf("Records: %ld\n", (long)pDATENT(dat));
  printf("Customers in Lyon: %ld\n", (long)pRNGENT(dat + 2, low, high));
  pCLISAM();
  dlclose(lib);
  return 0;
}
