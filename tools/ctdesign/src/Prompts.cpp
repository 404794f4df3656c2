// Prompts: text field, pick list and message box.
#include "Prompts.h"

#include <curses.h>

#include <algorithm>

#include "StringUtils.h"

namespace ctdesign {

std::optional<std::string> EditLine(const Redraw& redraw, const std::string& title,
                                    const std::string& text) {
  std::string value = text;
  size_t cursor = value.size();
  for (;;) {
    redraw();
    const int width = std::min(Screen::Cols(), std::max(60, static_cast<int>(title.size()) + 8));
    auto [row, col] = DrawPopup(4, width, title);
    const int field = width - 4;
    // The field scrolls so that the cursor stays in view.
    const size_t first =
        cursor >= static_cast<size_t>(field) ? cursor - static_cast<size_t>(field) + 1 : 0;
    PutText(row + 1, col + 2, field, value.substr(first), AttrSelected());
    PutText(row + 2, col + 2, field, "Enter accept  Esc cancel  Ctrl-U clear", AttrDim());
    curs_set(1);
    move(row + 1, col + 2 + static_cast<int>(cursor - first));
    Present();
    const int key = ReadKey();
    curs_set(0);
    if (IsEnter(key)) return value;
    if (key == kEscape) return std::nullopt;
    if (key == kClearLine) {
      value.clear();
      cursor = 0;
    } else if (IsBackspace(key)) {
      if (cursor > 0) value.erase(--cursor, 1);
    } else if (key == KEY_DC) {
      if (cursor < value.size()) value.erase(cursor, 1);
    } else if (key == KEY_LEFT) {
      if (cursor > 0) --cursor;
    } else if (key == KEY_RIGHT) {
      if (cursor < value.size()) ++cursor;
    } else if (key == KEY_HOME) {
      cursor = 0;
    } else if (key == KEY_END) {
      cursor = value.size();
    } else if (IsText(key)) {
      value.insert(cursor++, 1, static_cast<char>(key));
    }
  }
}

std::optional<std::string> PickFrom(const Redraw& redraw, const std::string& title,
                                    const std::vector<std::string>& values,
                                    const std::string& current) {
  if (values.empty()) return std::nullopt;
  ListCursor cursor;
  for (size_t i = 0; i < values.size(); ++i)
    if (values[i] == current) cursor.Selected = static_cast<int>(i);
  std::string typed;
  for (;;) {
    redraw();
    size_t longest = title.size();
    for (const std::string& v : values) longest = std::max(longest, v.size());
    const int height = std::min(static_cast<int>(values.size()) + 4, Screen::Rows() - 2);
    const int width =
        std::clamp(static_cast<int>(longest) + 6, 44, std::max(Screen::Cols() - 4, 10));
    auto [row, col] = DrawPopup(height, width, title);
    const int rows = height - 4;
    DrawList(row + 1, col + 1, rows, width - 2, values, cursor, true);
    PutText(row + height - 2, col + 2, width - 4,
            typed.empty() ? "Enter pick  Esc cancel  type to find" : "find: " + typed, AttrDim());
    Present();
    const int key = ReadKey();
    if (IsEnter(key)) return values[static_cast<size_t>(cursor.Selected)];
    if (key == kEscape) return std::nullopt;
    if (cursor.HandleKey(key, static_cast<int>(values.size()), rows)) {
      typed.clear();
      continue;
    }
    if (IsBackspace(key) && !typed.empty())
      typed.pop_back();
    else if (IsText(key))
      typed += static_cast<char>(key);
    else
      continue;
    for (size_t i = 0; i < values.size() && !typed.empty(); ++i)
      if (fw::SameText(values[i].substr(0, typed.size()), typed)) {
        cursor.Selected = static_cast<int>(i);
        break;
      }
  }
}

int ShowMessage(const Redraw& redraw, const std::string& title,
                const std::vector<std::string>& lines) {
  redraw();
  size_t longest = title.size();
  for (const std::string& line : lines) longest = std::max(longest, line.size());
  const int width = std::min(static_cast<int>(longest) + 6, Screen::Cols());
  auto [row, col] = DrawPopup(static_cast<int>(lines.size()) + 2, width, title);
  for (size_t i = 0; i < lines.size(); ++i)
    PutText(row + 1 + static_cast<int>(i), col + 2, width - 4, lines[i]);
  Present();
  return ReadKey();
}

}  // namespace ctdesign
