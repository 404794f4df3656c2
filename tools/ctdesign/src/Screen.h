// Screen: the terminal in full-screen mode and the drawing and list primitives of the designer
// (tools, ctdesign).
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace ctdesign {

/// Draws whatever lies under a modal dialog (the designer's main view), without refreshing.
using Redraw = std::function<void()>;

/// Holds the terminal in full-screen, keyboard-raw mode for its lifetime and restores it after.
/// Raises std::runtime_error when the terminal cannot be used (no terminal description for
/// TERM, output not a terminal).
class Screen {
 public:
  Screen();
  ~Screen();
  Screen(const Screen&) = delete;
  Screen& operator=(const Screen&) = delete;
  static int Rows();
  static int Cols();
};

inline constexpr int kEscape = 27;
inline constexpr int kTab = 9;
/// Ctrl-U, which empties a text field.
inline constexpr int kClearLine = 21;
/// Enter in any of its forms.
bool IsEnter(int key);
/// Backspace in any of its forms.
bool IsBackspace(int key);
/// A character to insert into text (printable single byte).
bool IsText(int key);
/// The next key (blocking).
int ReadKey();

/// Display attributes.
int AttrSelected();
int AttrTitle();
int AttrError();
int AttrDim();

/// `text` at (row, col), cut or padded with blanks to `width` columns, with `attr`.
void PutText(int row, int col, int width, const std::string& text, int attr = 0);
/// A frame around the rectangle with `title` in its top edge (bold when `focused`) and its
/// inside cleared.
void DrawFrame(int row, int col, int height, int width, const std::string& title, bool focused);
/// Shows the screen as drawn.
void Present();

/// Selection and scrolling of a list of `count` items shown in `height` rows.
struct ListCursor {
  int Selected = 0;
  int Top = 0;
  /// Keeps Selected within the list and visible.
  void Clamp(int count, int height);
  /// Up, Down, Page Up, Page Down, Home, End; false for any other key.
  bool HandleKey(int key, int count, int height);
};

/// `items` in the rectangle, scrolled by `cursor`; the selected item is highlighted when
/// `focused` and marked with ">" otherwise.
void DrawList(int row, int col, int height, int width, const std::vector<std::string>& items,
              ListCursor& cursor, bool focused);

/// A centred frame of `height` x `width` (cut to the screen) drawn over the view; returns its
/// top row and left column.
std::pair<int, int> DrawPopup(int height, int width, const std::string& title);

}  // namespace ctdesign
