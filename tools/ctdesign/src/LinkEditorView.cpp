// LinkEditorView: four columns over TfrmDetailEdit.
#include "LinkEditorView.h"

#include <curses.h>

#include <algorithm>

#include "Exception.h"
#include "TCTTable.h"
#include "TfrmDetailEdit.h"

namespace ctdesign {

namespace {

enum Column { kIndexes, kDetail, kMaster, kLinks, kColumns };

}  // namespace

bool RunLinkEditor(const Redraw& redraw, UnitDetailEdit::TfrmDetailEdit& form) {
  ListCursor cursors[kColumns];
  for (size_t i = 0; i < form.Indexes().size(); ++i)
    if (form.Indexes()[i] == form.IndexName()) cursors[kIndexes].Selected = static_cast<int>(i);
  int focus = kIndexes;
  std::string problem;
  const std::string title = "Link " + form.Detail().Name() + " to master " + form.Master().Name();
  for (;;) {
    std::vector<std::string> columns[kColumns];
    for (const std::string& name : form.Indexes())
      columns[kIndexes].push_back((name == form.IndexName() ? "* " : "  ") + name);
    columns[kDetail] = form.DetailFields();
    columns[kMaster] = form.MasterFieldNames();
    for (const UnitDetailEdit::TFieldLink& link : form.Links())
      columns[kLinks].push_back(link.DetailField + " -> " + link.MasterField);

    redraw();
    const int height = std::max(Screen::Rows() - 4, 10);
    const int width = std::max(Screen::Cols() - 6, 40);
    auto [row, col] = DrawPopup(height, width, title);
    const int columnWidth = (width - 2) / kColumns;
    const char* captions[kColumns] = {"Indexes", "Detail fields", "Master fields", "Links"};
    const int rows = height - 7;
    for (int c = 0; c < kColumns; ++c) {
      const int x = col + 1 + c * columnWidth;
      PutText(row + 1, x + 1, columnWidth - 1, captions[c],
              c == focus ? AttrTitle() | AttrSelected() : AttrTitle());
      DrawList(row + 2, x, rows, columnWidth - 1, columns[c], cursors[c], c == focus);
    }
    PutText(row + height - 4, col + 2, width - 4,
            "MasterFields = '" + form.MasterFieldsText() + "'");
    PutText(row + height - 3, col + 2, width - 4, problem, AttrError());
    PutText(row + height - 2, col + 2, width - 4,
            "Tab column  Enter choose/pair  a pair  d delete  c clear  o OK  Esc cancel",
            AttrDim());
    Present();

    const int key = ReadKey();
    problem.clear();
    try {
      if (key == kEscape) return false;
      if (key == 'o' || key == 'O') return true;
      if (key == kTab || key == KEY_RIGHT || key == KEY_BTAB || key == KEY_LEFT) {
        const bool forward = key == kTab || key == KEY_RIGHT;
        focus = (focus + (forward ? 1 : kColumns - 1)) % kColumns;
      } else if (cursors[focus].HandleKey(key, static_cast<int>(columns[focus].size()), rows)) {
        continue;
      } else if (IsEnter(key) && focus == kIndexes && !form.Indexes().empty()) {
        form.SelectIndex(form.Indexes()[static_cast<size_t>(cursors[kIndexes].Selected)]);
      } else if (IsEnter(key) && focus == kDetail) {
        focus = kMaster;
      } else if ((IsEnter(key) && focus == kMaster) || key == 'a' || key == 'A') {
        const std::vector<std::string>& details = columns[kDetail];
        const std::vector<std::string>& masters = columns[kMaster];
        if (details.empty())
          throw fw::Exception("Every key field of " + form.IndexName() + " is paired");
        if (masters.empty()) throw fw::Exception("The master has no fields");
        const int detail =
            std::min(cursors[kDetail].Selected, static_cast<int>(details.size()) - 1);
        form.AddLink(details[static_cast<size_t>(detail)],
                     masters[static_cast<size_t>(cursors[kMaster].Selected)]);
        cursors[kDetail] = ListCursor();
      } else if ((key == 'd' || key == 'D' || key == KEY_DC) && !form.Links().empty()) {
        const int last = static_cast<int>(form.Links().size()) - 1;
        form.DeleteLink(focus == kLinks ? std::min(cursors[kLinks].Selected, last) : last);
      } else if (key == 'c' || key == 'C') {
        form.ClearLinks();
      }
    } catch (const std::exception& e) {
      problem = e.what();
    }
  }
}

}  // namespace ctdesign
