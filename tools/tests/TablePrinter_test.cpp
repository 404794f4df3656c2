// Tests of TablePrinter and ProgressBar: what reaches the screen.
#include "TablePrinter.h"

#include <gtest/gtest.h>

#include <sstream>

#include "ProgressBar.h"

namespace ctt {
namespace {

TEST(TablePrinter, AlignsColumnsToTheWidestCell) {
  TablePrinter printer({"id", "name", "city"}, {TablePrinter::Right});
  printer.AddRow({"1", "Smith, Anne", "Oslo"});
  printer.AddRow({"1234", "Li", ""});
  printer.AddRow({"7"});
  std::ostringstream out;
  printer.Print(out);
  EXPECT_EQ(out.str(),
            "  id  name         city\n"
            "----  -----------  ----\n"
            "   1  Smith, Anne  Oslo\n"
            "1234  Li\n"
            "   7\n");
}

TEST(TablePrinter, CountsUtf8CharactersAndEscapesControlCharacters) {
  TablePrinter printer({"a", "b"});
  printer.AddRow({"Bj\xC3\xB8rn", "x"});
  printer.AddRow({"two\nlines", "\x01"});
  std::ostringstream out;
  printer.Print(out);
  EXPECT_EQ(out.str(),
            "a           b\n"
            "----------  ----\n"
            "Bj\xC3\xB8rn       x\n"
            "two\\nlines  \\x01\n");
}

TEST(TablePrinter, CutsLongCellsWithoutSplittingCharacters) {
  EXPECT_EQ(TablePrinter::Displayable("abcdefgh", 6), "abc...");
  EXPECT_EQ(TablePrinter::Displayable("\xC3\xB8\xC3\xB8\xC3\xB8\xC3\xB8\xC3\xB8", 4), "\xC3\xB8...");
  EXPECT_EQ(TablePrinter::Displayable("abcd", 4), "abcd");
  EXPECT_EQ(TablePrinter::DisplayWidth("\xE2\x82\xAC" "1"), 2u);
}

TEST(TablePrinter, RefusesRowsWiderThanTheHeader) {
  TablePrinter printer({"a"});
  EXPECT_THROW(printer.AddRow({"1", "2"}), std::invalid_argument);
  EXPECT_EQ(printer.RowCount(), 0u);
}

TEST(ProgressBar, RendersFractionCountAndRate) {
  EXPECT_EQ(ProgressBar::Render(0.5, 1234567, 99999.6, 10), "[#####     ]  50%  1,234,567 rows  100,000 rows/s");
  EXPECT_EQ(ProgressBar::Render(1.7, 5, 0, 4), "[####] 100%  5 rows");
  EXPECT_EQ(ProgressBar::Render(-1, 999, 0, 10), "999 rows");
  EXPECT_EQ(ProgressBar::Grouped(1000), "1,000");
  EXPECT_EQ(ProgressBar::Grouped(0), "0");
}

TEST(ProgressBar, DrawsNothingWhenNotOnATerminal) {
  std::ostringstream out;
  ProgressBar bar(out, false, 100);
  bar.Update(50, 5);
  bar.Clear();
  bar.Finish(100, 10);
  EXPECT_EQ(out.str(), "");

  std::ostringstream tty;
  ProgressBar shown(tty, true, 100);
  shown.Finish(100, 10);
  EXPECT_EQ(tty.str(), "") << "a bar never drawn is not finished either";
}

}  // namespace
}  // namespace ctt
