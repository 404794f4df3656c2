// design_bench: how fast the designer's value lists appear for TCTTable.TableName, over a
// directory of 10,000 data files (and their 10,000 index files) and over a super file of 1,000
// tables (2,000 members with their indexes). Each listing is what the designer does when the
// list drops down: the editor's GetValues, then sorting. Run from a Release build:
// <build>/bench/design_bench [--files=N] [--members=M].
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "BenchProgram.h"
#include "CTTables.h"
#include "CTreeReg.h"
#include "Ctdb.h"
#include "DesignIntf.h"
#include "StringUtils.h"
#include "TDataModule.h"

namespace {

int gFiles = 10000;
int gMembers = 1000;
std::string gDir;

// The designer's side of an editor, without a screen.
class BenchDesigner : public fw::IDesigner {
 public:
  explicit BenchDesigner(fw::TComponent* root) : FRoot(root) {}
  fw::TComponent* Root() const override { return FRoot; }
  void Modified() override {}
  bool ExecuteOpenDialog(fw::TOpenDialog&) override { return false; }

 private:
  fw::TComponent* FRoot;
};

struct Form {
  fw::TComponentPtr<fw::TDataModule> Root{new fw::TDataModule(nullptr)};
  BenchDesigner Designer{Root.get()};
  Ctdb::TCTConnection* Conn = new Ctdb::TCTConnection(Root.get());
  CTTables::TCTTable* Table = new CTTables::TCTTable(Root.get());
  Form() {
    Root->SetDesigning(true);
    Conn->SetDataExt(".dat");
    Conn->SetActive(true);
    Table->SetConnection(Conn);
  }
};

// The list as the designer shows it: every value, sorted without regard to case.
size_t DropDown(Form& form) {
  const fw::TPropInfo& prop = *form.Table->ClassType().FindProperty("TableName");
  std::unique_ptr<fw::TPropertyEditor> editor =
      fw::GetPropertyEditor(form.Designer, {form.Table}, prop);
  std::vector<std::string> values;
  editor->GetValues([&](const std::string& v) { values.push_back(v); });
  std::sort(values.begin(), values.end(),
            [](const std::string& a, const std::string& b) { return fw::CompareText(a, b) < 0; });
  return values.size();
}

void TableNames_Directory(benchmark::State& state) {
  Form form;
  form.Table->SetDatabase(gDir + "/files");
  size_t listed = 0;
  for (auto _ : state) benchmark::DoNotOptimize(listed = DropDown(form));
  if (listed != static_cast<size_t>(gFiles)) state.SkipWithError("wrong number of tables listed");
  state.counters["tables"] = static_cast<double>(listed);
}

void TableNames_SuperFile(benchmark::State& state) {
  Form form;
  form.Table->SetIsSuperFile(true);
  form.Table->SetDatabase(gDir + "/books.sup");
  size_t listed = 0;
  for (auto _ : state) benchmark::DoNotOptimize(listed = DropDown(form));
  if (listed != static_cast<size_t>(gMembers)) state.SkipWithError("wrong number of tables listed");
  state.counters["tables"] = static_cast<double>(listed);
}

// The directory listing reads names only, so empty files stand for the data and index files.
void MakeFiles() {
  std::filesystem::create_directories(gDir + "/files");
  char name[32];
  for (int i = 0; i < gFiles; ++i) {
    std::snprintf(name, sizeof name, "/files/t%05d.", i);
    std::ofstream(gDir + name + "dat");
    std::ofstream(gDir + name + "idx");
  }
}

// Real tables as members of one super file, each with one index.
void MakeSuperFile() {
  Ctdb::TCTConnection conn(nullptr);
  conn.SetDataExt(".dat");
  conn.SetActive(true);
  char name[32];
  for (int i = 0; i < gMembers; ++i) {
    fw::TComponentPtr<CTTables::TCTTable> table(new CTTables::TCTTable(nullptr));
    table->SetConnection(&conn);
    table->SetIsSuperFile(true);
    table->SetDatabase(gDir + "/books.sup");
    std::snprintf(name, sizeof name, "m%04d.dat", i);
    table->SetTableName(name);
    table->FieldDefs()->Add("ID", fw::ftInteger);
    table->IndexDefs()->Add("ById", "ID", "", true, false, {fw::ixPrimary, fw::ixUnique});
    table->CreateTable();
  }
}

}  // namespace

BENCHMARK(TableNames_Directory)->Unit(benchmark::kMillisecond);
BENCHMARK(TableNames_SuperFile)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
  bench::BenchProgram program("design_bench", argc, argv,
                             bench::Flags().Int("--files=", gFiles, 1).Int("--members=", gMembers, 1));
  gDir = program.Dir();
  return program.Run([] {
    CTreeReg::Register();
    MakeFiles();
    MakeSuperFile();
    benchmark::RunSpecifiedBenchmarks();
  });
}
