// Screen: ncurses set-up and the drawing primitives.
#include "Screen.h"

#include <curses.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace ctdesign {

namespace {
constexpr short kErrorPair = 1;
}  // namespace

Screen::Screen() {
  if (newterm(nullptr, stdout, stdin) == nullptr)
    throw std::runtime_error("cannot use the terminal (is TERM set to a known terminal?)");
  // Raw rather than cbreak: Ctrl-S and Ctrl-Q reach the program instead of pausing output.
  raw();
  noecho();
  keypad(stdscr, TRUE);
  set_escdelay(25);
  curs_set(0);
  if (has_colors()) {
    start_color();
    use_default_colors();
    init_pair(kErrorPair, COLOR_RED, -1);
  }
}

Screen::~Screen() { endwin(); }

int Screen::Rows() { return LINES; }
int Screen::Cols() { return COLS; }

bool IsEnter(int key) { return key == '\n' || key == '\r' || key == KEY_ENTER; }
bool IsBackspace(int key) { return key == KEY_BACKSPACE || key == 127 || key == 8; }
bool IsText(int key) { return key >= 32 && key < 127; }
int ReadKey() { return getch(); }

int AttrSelected() { return A_REVERSE; }
int AttrTitle() { return A_BOLD; }
int AttrError() {
  return has_colors() ? static_cast<int>(COLOR_PAIR(kErrorPair) | A_BOLD) : A_BOLD;
}
int AttrDim() { return A_DIM; }

void PutText(int row, int col, int width, const std::string& text, int attr) {
  if (width <= 0 || row < 0 || row >= LINES || col < 0 || col >= COLS) return;
  width = std::min(width, COLS - col);
  std::string line = text.substr(0, static_cast<size_t>(width));
  for (char& c : line)
    if (static_cast<unsigned char>(c) < 32) c = '?';  // a control character would move the cursor
  line.resize(static_cast<size_t>(width), ' ');
  attron(attr);
  mvaddnstr(row, col, line.c_str(), width);
  attroff(attr);
}

void DrawFrame(int row, int col, int height, int width, const std::string& title, bool focused) {
  if (height < 2 || width < 2) return;
  for (int r = row; r < row + height; ++r) PutText(r, col, width, "");
  mvaddch(row, col, ACS_ULCORNER);
  mvaddch(row, col + width - 1, ACS_URCORNER);
  mvaddch(row + height - 1, col, ACS_LLCORNER);
  mvaddch(row + height - 1, col + width - 1, ACS_LRCORNER);
  mvhline(row, col + 1, ACS_HLINE, width - 2);
  mvhline(row + height - 1, col + 1, ACS_HLINE, width - 2);
  mvvline(row + 1, col, ACS_VLINE, height - 2);
  mvvline(row + 1, col + width - 1, ACS_VLINE, height - 2);
  if (!title.empty() && width > 4) {
    const std::string shown = " " + title.substr(0, static_cast<size_t>(width - 4)) + " ";
    PutText(row, col + 1, static_cast<int>(shown.size()), shown,
            focused ? AttrTitle() | A_REVERSE : AttrTitle());
  }
}

void Present() { refresh(); }

void ListCursor::Clamp(int count, int height) {
  Selected = std::clamp(Selected, 0, std::max(count - 1, 0));
  height = std::max(height, 1);
  if (Selected < Top) Top = Selected;
  if (Selected >= Top + height) Top = Selected - height + 1;
  Top = std::clamp(Top, 0, std::max(count - height, 0));
}

bool ListCursor::HandleKey(int key, int count, int height) {
  switch (key) {
    case KEY_UP:
      --Selected;
      break;
    case KEY_DOWN:
      ++Selected;
      break;
    case KEY_PPAGE:
      Selected -= std::max(height - 1, 1);
      break;
    case KEY_NPAGE:
      Selected += std::max(height - 1, 1);
      break;
    case KEY_HOME:
      Selected = 0;
      break;
    case KEY_END:
      Selected = count - 1;
      break;
    default:
      return false;
  }
  Clamp(count, height);
  return true;
}

void DrawList(int row, int col, int height, int width, const std::vector<std::string>& items,
              ListCursor& cursor, bool focused) {
  cursor.Clamp(static_cast<int>(items.size()), height);
  for (int i = 0; i < height; ++i) {
    const int index = cursor.Top + i;
    if (index >= static_cast<int>(items.size())) {
      PutText(row + i, col, width, "");
      continue;
    }
    const bool selected = index == cursor.Selected;
    const std::string mark = selected && !focused ? ">" : " ";
    PutText(row + i, col, width, mark + items[static_cast<size_t>(index)],
            selected && focused ? AttrSelected() : 0);
  }
}

std::pair<int, int> DrawPopup(int height, int width, const std::string& title) {
  height = std::min(height, LINES);
  width = std::min(width, COLS);
  const int row = std::max((LINES - height) / 2, 0);
  const int col = std::max((COLS - width) / 2, 0);
  DrawFrame(row, col, height, width, title, true);
  return {row, col};
}

}  // namespace ctdesign
