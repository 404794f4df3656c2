// DesignerWindow: layout, keys and the editing round trip of the designer's main view.
#include "DesignerWindow.h"

#include <curses.h>

#include <algorithm>

#include "FileDialogView.h"
#include "LinkEditorView.h"
#include "Prompts.h"
#include "StringUtils.h"
#include "TComponentPalette.h"

namespace ctdesign {

namespace {

constexpr const char* kKeyLine =
    "Tab pane  Enter add/select/edit  e type value  / find  d delete  s save  ? help  q quit";

const std::vector<std::string> kHelp = {
    "Tab, Shift-Tab    next / previous pane (palette, components, properties)",
    "Up, Down, PgUp, PgDn, Home, End    move in the pane",
    "/                 find an entry of the pane by name",
    "Enter             palette: add the class to the form",
    "                  components: edit the component's properties",
    "                  properties: edit the value (list, dialog or text)",
    "e                 type a property's value as text",
    "d, Delete         delete the selected component",
    "s, F2             save the form",
    "q, F10            quit (asks when there are unsaved changes)",
    "",
    "In lists: type to jump, Enter picks, Esc cancels.",
    "In text fields: Enter accepts, Esc cancels, Ctrl-U clears.",
    "Property marks: [v] a list of values, [...] a dialog, (read-only).",
};

// The value of a property no editor shows: sets by member names, objects by class.
std::string PlainValue(fw::TComponent& component, const fw::TPropInfo& info) {
  switch (info.Kind) {
    case fw::pkSet: {
      const uint64_t mask = static_cast<uint64_t>(info.Get(component).AsInt64());
      std::string text;
      for (size_t i = 0; i < info.Names.size() && i < 64; ++i)
        if (mask >> i & 1u) text += (text.empty() ? "" : ", ") + info.Names[i];
      return "[" + text + "]";
    }
    case fw::pkObject: {
      const fw::TPersistent* object = info.GetObject(component);
      return object == nullptr ? "(none)" : "(" + object->ClassName() + ")";
    }
    default:
      return "(binary)";
  }
}

// Case-insensitive position of the best match for `wanted`: equal, else beginning with it, else
// containing it; -1 for none.
int BestMatch(const std::vector<std::string>& names, const std::string& wanted) {
  const std::string key = fw::LowerCase(fw::Trim(wanted));
  if (key.empty()) return -1;
  int prefix = -1, inside = -1;
  for (size_t i = 0; i < names.size(); ++i) {
    const std::string name = fw::LowerCase(fw::Trim(names[i]));
    if (name == key) return static_cast<int>(i);
    if (prefix < 0 && name.starts_with(key)) prefix = static_cast<int>(i);
    if (inside < 0 && name.find(key) != std::string::npos) inside = static_cast<int>(i);
  }
  return prefix >= 0 ? prefix : inside;
}

}  // namespace

DesignerWindow::DesignerWindow(std::string fileName) : FormDocument(std::move(fileName)) {
  for (const fw::TPalettePage& page : fw::ComponentPalette().Pages()) {
    FPalette.push_back({page.Name, nullptr});
    for (const fw::TClassInfo* cls : page.Classes)
      FPalette.push_back({"  " + cls->ClassName(), cls});
  }
  FCursors[kPalette].Selected = FPalette.size() > 1 ? 1 : 0;
  if (!Components().empty()) SelectAt(0);
  if (!LoadError().empty())
    Say("Not read: " + LoadError() + " - nothing will be written back", true);
  else if (IsNew())
    Say("New form " + Root()->Name() + "; pick a class in the palette and press Enter");
}

bool DesignerWindow::ExecuteOpenDialog(fw::TOpenDialog& dialog) {
  return RunFileDialog([this] { Draw(); }, dialog);
}

bool DesignerWindow::ShowDetailEdit(UnitDetailEdit::TfrmDetailEdit& form) {
  return RunLinkEditor([this] { Draw(); }, form);
}

void DesignerWindow::Say(const std::string& text, bool error) {
  FMessage = text;
  FMessageIsError = error;
}

int DesignerWindow::ListHeight() const { return std::max(Screen::Rows() - 6, 1); }

void DesignerWindow::SelectAt(int index) {
  const std::vector<fw::TComponent*> components = Components();
  FCursors[kComponents].Selected = index;
  FCursors[kComponents].Clamp(static_cast<int>(components.size()), ListHeight());
  Select(components.empty() ? nullptr
                            : components[static_cast<size_t>(FCursors[kComponents].Selected)]);
  FCursors[kProperties] = ListCursor();
  RefreshProperties();
}

void DesignerWindow::RefreshProperties() { FRows = Properties(); }

void DesignerWindow::Run() {
  for (;;) {
    Draw();
    Present();
    const int key = ReadKey();
    if (Screen::Rows() < 12 || Screen::Cols() < 60) {
      if (key == 'q' || key == KEY_F(10)) return;
      continue;
    }
    try {
      if (!HandleKey(key)) return;
    } catch (const std::exception& e) {
      // The editors' refusals are handled where they happen; anything else still ends here,
      // shown, with the form open.
      Say(e.what(), true);
    }
  }
}

void DesignerWindow::Draw() {
  erase();
  const int rows = Screen::Rows(), cols = Screen::Cols();
  if (rows < 12 || cols < 60) {
    PutText(0, 0, cols, "ctdesign: the terminal is too small (60 x 12 at least); q quits");
    return;
  }
  std::string title =
      "ctdesign  " + FileName() + "  form " + Root()->Name() + ": " + Root()->ClassName();
  if (IsNew()) title += "  [new]";
  if (IsModified()) title += "  [modified]";
  PutText(0, 0, cols, title, AttrTitle());
  if (!LoadError().empty())
    PutText(1, 0, cols, "This form could not be read: " + LoadError(), AttrError());

  const int top = 2, height = rows - 4;
  const int paletteWidth = std::min(26, cols / 4), componentWidth = std::min(32, cols / 3);
  const int propertyWidth = cols - paletteWidth - componentWidth;
  std::vector<std::string> palette;
  for (const PaletteItem& item : FPalette) palette.push_back(item.Text);
  DrawFrame(top, 0, height, paletteWidth, "Palette", FFocus == kPalette);
  DrawList(top + 1, 1, height - 2, paletteWidth - 2, palette, FCursors[kPalette],
           FFocus == kPalette);

  std::vector<std::string> components;
  for (fw::TComponent* c : Components()) components.push_back(c->Name() + ": " + c->ClassName());
  DrawFrame(top, paletteWidth, height, componentWidth, "Components", FFocus == kComponents);
  DrawList(top + 1, paletteWidth + 1, height - 2, componentWidth - 2, components,
           FCursors[kComponents], FFocus == kComponents);
  DrawProperties(top, paletteWidth + componentWidth, height, propertyWidth);

  PutText(rows - 2, 0, cols, FMessage, FMessageIsError ? AttrError() : 0);
  PutText(rows - 1, 0, cols, kKeyLine, AttrDim());
}

void DesignerWindow::DrawProperties(int row, int col, int height, int width) {
  fw::TComponent* selected = Selected();
  DrawFrame(row, col, height, width,
            selected == nullptr ? "Properties" : "Properties of " + selected->Name(),
            FFocus == kProperties);
  std::vector<std::string> lines;
  size_t nameWidth = 12;
  for (const PropertyRow& r : FRows) nameWidth = std::max(nameWidth, r.Info->Name.size() + 1);
  for (const PropertyRow& r : FRows) {
    std::string value, mark;
    try {
      if (r.Editor == nullptr) {
        value = PlainValue(*selected, *r.Info);
      } else {
        value = r.Editor->GetValue();
        const fw::TPropertyAttributes attrs = r.Editor->GetAttributes();
        mark = attrs.Contains(fw::paReadOnly)    ? "  (read-only)"
               : attrs.Contains(fw::paDialog)    ? "  [...]"
               : attrs.Contains(fw::paValueList) ? "  [v]"
                                                 : "";
      }
    } catch (const std::exception& e) {
      value = std::string("(") + e.what() + ")";
    }
    std::string name = r.Info->Name;
    name.resize(nameWidth, ' ');
    lines.push_back(name + value + mark);
  }
  DrawList(row + 1, col + 1, height - 2, width - 2, lines, FCursors[kProperties],
           FFocus == kProperties);
}

bool DesignerWindow::HandleKey(int key) {
  const int counts[kPanes] = {static_cast<int>(FPalette.size()),
                              static_cast<int>(Components().size()),
                              static_cast<int>(FRows.size())};
  Say("");
  if (key == kTab || key == KEY_BTAB) {
    FFocus = static_cast<Pane>((FFocus + (key == kTab ? 1 : kPanes - 1)) % kPanes);
  } else if (FCursors[FFocus].HandleKey(key, counts[FFocus], ListHeight())) {
    if (FFocus == kComponents) SelectAt(FCursors[kComponents].Selected);
  } else if (IsEnter(key)) {
    Activate();
  } else if (key == 'e' && FFocus == kProperties) {
    EditProperty(true);
  } else if (key == '/') {
    Find();
  } else if ((key == 'd' || key == KEY_DC) && FFocus == kComponents) {
    DeleteComponent();
  } else if (key == 's' || key == KEY_F(2)) {
    try {
      Save();
      Say("Saved " + FileName());
    } catch (const std::exception& e) {
      Say(e.what(), true);
    }
  } else if (key == '?' || key == KEY_F(1)) {
    ShowHelp();
  } else if (key == 'q' || key == KEY_F(10)) {
    return !ConfirmQuit();
  }
  return true;
}

void DesignerWindow::Activate() {
  switch (FFocus) {
    case kPalette:
      AddFromPalette();
      break;
    case kComponents:
      if (Selected() != nullptr) FFocus = kProperties;
      break;
    default:
      EditProperty(false);
      break;
  }
}

void DesignerWindow::AddFromPalette() {
  if (FPalette.empty()) return;
  const PaletteItem& item = FPalette[static_cast<size_t>(FCursors[kPalette].Selected)];
  if (item.Class == nullptr) return;
  try {
    fw::TComponent* added = AddComponent(*item.Class);
    const std::vector<fw::TComponent*> components = Components();
    SelectAt(static_cast<int>(std::find(components.begin(), components.end(), added) -
                              components.begin()));
    FFocus = kProperties;
    Say("Added " + added->Name());
  } catch (const std::exception& e) {
    Say(e.what(), true);
  }
}

void DesignerWindow::EditProperty(bool typed) {
  if (FRows.empty()) return;
  const PropertyRow& row = FRows[static_cast<size_t>(FCursors[kProperties].Selected)];
  fw::TPropertyEditor* editor = row.Editor.get();
  const std::string name = row.Info->Name;
  const std::string title = name + " of " + Selected()->Name();
  try {
    if (editor == nullptr) throw fw::Exception(name + " cannot be edited here");
    const fw::TPropertyAttributes attrs = editor->GetAttributes();
    if (attrs.Contains(fw::paReadOnly)) throw fw::Exception(name + " is read-only");
    std::optional<std::string> value;
    if (!typed && attrs.Contains(fw::paDialog)) {
      editor->Edit();
    } else if (!typed && attrs.Contains(fw::paValueList)) {
      std::vector<std::string> values;
      editor->GetValues([&](const std::string& v) { values.push_back(v); });
      if (attrs.Contains(fw::paSortList))
        std::sort(values.begin(), values.end(), [](const std::string& a, const std::string& b) {
          return fw::CompareText(a, b) < 0;
        });
      if (values.empty())
        throw fw::Exception("No values to pick for " + name + "; press e to type one");
      value = PickFrom([this] { Draw(); }, title, values, editor->GetValue());
    } else {
      value = EditLine([this] { Draw(); }, title, editor->GetValue());
    }
    if (value) editor->SetValue(*value);
    RefreshProperties();
    Say(name + " = " +
        FRows[static_cast<size_t>(FCursors[kProperties].Selected)].Editor->GetValue());
  } catch (const std::exception& e) {
    // The editors leave the old value when they refuse; the list is read again either way,
    // since a dialog may have changed other properties before failing.
    RefreshProperties();
    Say(name + ": " + e.what(), true);
  }
}

void DesignerWindow::Find() {
  static const char* kWhat[kPanes] = {"Find a class", "Find a component", "Find a property"};
  const std::optional<std::string> wanted = EditLine([this] { Draw(); }, kWhat[FFocus], "");
  if (!wanted || wanted->empty()) return;
  std::vector<std::string> names;
  if (FFocus == kPalette)
    for (const PaletteItem& item : FPalette)
      names.push_back(item.Class == nullptr ? "" : item.Class->ClassName());
  else if (FFocus == kComponents)
    for (fw::TComponent* c : Components()) names.push_back(c->Name());
  else
    for (const PropertyRow& r : FRows) names.push_back(r.Info->Name);
  const int found = BestMatch(names, *wanted);
  if (found < 0) return Say("Nothing matches " + *wanted, true);
  if (FFocus == kComponents) return SelectAt(found);
  FCursors[FFocus].Selected = found;
  FCursors[FFocus].Clamp(static_cast<int>(names.size()), ListHeight());
}

void DesignerWindow::DeleteComponent() {
  if (Selected() == nullptr) return;
  const std::string name = Selected()->Name();
  const int key =
      ShowMessage([this] { Draw(); }, "Delete",
                  {"Delete " + name + " from the form?", "y delete, any other key keeps it"});
  if (key != 'y' && key != 'Y') return;
  DeleteSelected();
  SelectAt(FCursors[kComponents].Selected);
  Say("Deleted " + name);
}

bool DesignerWindow::ConfirmQuit() {
  if (!IsModified() || !LoadError().empty()) return true;
  const int key = ShowMessage([this] { Draw(); }, "Quit",
                              {"Save the changes to " + FileName() + "?",
                               "y save and quit, n quit without saving, Esc stay"});
  if (key == 'n' || key == 'N') return true;
  if (key != 'y' && key != 'Y') return false;
  try {
    Save();
    return true;
  } catch (const std::exception& e) {
    Say(e.what(), true);
    return false;
  }
}

void DesignerWindow::ShowHelp() {
  std::vector<std::string> lines = kHelp;
  lines.push_back("");
  lines.push_back("Press any key to go back.");
  ShowMessage([this] { Draw(); }, "ctdesign keys", lines);
}

}  // namespace ctdesign
