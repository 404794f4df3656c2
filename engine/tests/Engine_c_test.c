/* Engine_c_test: the public header compiles as C11 and the engine is usable from C through
 * dlopen: create a table, add a record, find it by key, read the stored definition back. */
#include <dlfcn.h>
#include <string.h>

#include "ctisam.h"

#define BIND(h, name) ((__typeof__(&name))dlsym(h, #name))

int ct_c_round_trip(const char* libpath) {
  void* h = dlopen(libpath, RTLD_NOW | RTLD_LOCAL);
  if (!h) return 1;
  int result = 0;
  __typeof__(&CREIFIL) creifil = BIND(h, CREIFIL);
  __typeof__(&ADDREC) addrec = BIND(h, ADDREC);
  __typeof__(&EQLREC) eqlrec = BIND(h, EQLREC);
  __typeof__(&frmkey) formkey = BIND(h, frmkey);
  __typeof__(&GETIFIL) getifil = BIND(h, GETIFIL);
  __typeof__(&DELRFIL) delrfil = BIND(h, DELRFIL);
  if (!creifil || !addrec || !eqlrec || !formkey || !getifil || !delrfil) {
    result = 2;
  } else {
    ISEG seg = {.soffset = 0, .slength = 8, .segmode = REGSEG};
    IIDX idx = {.ikeylen = 8, .ikeydup = 0, .inumseg = 1, .seg = &seg};
    IFIL ifil = {.pfilnam = "c_table", .dfilno = -1, .dreclen = 16, .dfilmod = EXCLUSIVE,
                 .dnumidx = 1, .ifilmod = EXCLUSIVE, .ix = &idx, .tfilno = -1};
    char rec[16] = "key00001payload", found[16] = {0}, key[8];
    char image[512];
    if (creifil(&ifil) != 0) {
      result = 3;
    } else if (addrec(ifil.tfilno, rec) != 0) {
      result = 4;
    } else if (formkey((COUNT)(ifil.tfilno + 1), rec, key, 0, 0) != 8 ||
               eqlrec((COUNT)(ifil.tfilno + 1), key, found) != 0 || memcmp(rec, found, 16) != 0) {
      result = 5;
    } else {
      LONG size = getifil(ifil.tfilno, sizeof image, image);
      IFIL* back = (IFIL*)image;
      if (size <= 0 || strcmp(back->pfilnam, "c_table") != 0 || back->dnumidx != 1 ||
          back->ix[0].seg[0].slength != 8)
        result = 6;
    }
    if (ifil.tfilno >= 0 && delrfil(ifil.tfilno) != 0 && result == 0) result = 7;
  }
  dlclose(h);
  return result;
}
