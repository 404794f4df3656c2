// Files this process may read but not write: they open read-only, and only in READFIL mode.
#include <sys/stat.h>

#include <filesystem>

#include "ChildProcess.h"
#include "EngineFixture.h"

namespace {

class EngineReadOnly : public EngineTest {};

// The child drops write permission (as root it becomes nobody; otherwise the files and their
// folder are made read-only) and reports the first check that fails as its exit status.
TEST_F(EngineReadOnly, AFileThatCannotBeWrittenIsReadInReadOnlyModeOnly) {
  const COUNT dat = CreateCustomers();
  ASSERT_EQ(Add(dat, 7, "Tilde Varg", "Narvik"), 0);
  ASSERT_EQ(api.CLISAM(), 0);
  namespace fs = std::filesystem;
  for (const auto& entry : fs::directory_iterator(dir_))
    fs::permissions(entry.path(), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  fs::permissions(dir_, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                            fs::perms::group_exec | fs::perms::others_read | fs::perms::others_exec);
  const pid_t child = Spawn([](EngineApi& engine) {
    if (geteuid() == 0 && setuid(65534) != 0) return 91;
    if (engine.OPNRFILX(0, (pTEXT) "customers.dat", SHARED, nullptr) != FNOP_ERR) return 1;
    if (engine.OPNRFILX(0, (pTEXT) "customers.dat", SHARED | READFIL, nullptr) != 0) return 2;
    Customer c{};
    if (engine.FRSREC(0, &c) != 0 || c.id != 7) return 4;
    if (engine.ADDREC(0, &c) != CT_EREADONLY) return 5;
    if (engine.DATENT(0) != 1 || engine.IDXENT(2) != 1) return 6;
    return 0;
  });
  EXPECT_EQ(Wait(child), 0);
  fs::permissions(dir_, fs::perms::owner_all);
}

}  // namespace
