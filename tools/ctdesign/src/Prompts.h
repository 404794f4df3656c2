// Prompts: the small modal dialogs of the designer: a text field, a pick list and a message (tools,
// ctdesign).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Screen.h"

namespace ctdesign {

/// A one-line text field under `title`, starting with `text`. Typing inserts at the cursor;
/// Left, Right, Home, End move; Backspace and Delete erase; Ctrl-U empties. Enter returns the
/// text, Escape nothing.
std::optional<std::string> EditLine(const Redraw& redraw, const std::string& title,
                                    const std::string& text);

/// A list of `values` to pick one from, starting on `current` when it is among them. Typing
/// jumps to the first value beginning with what was typed (ignoring case; Backspace takes a
/// letter back); Enter returns the value, Escape nothing. Empty `values` return nothing at once.
std::optional<std::string> PickFrom(const Redraw& redraw, const std::string& title,
                                    const std::vector<std::string>& values,
                                    const std::string& current);

/// `lines` in a box under `title` until a key is pressed; returns that key.
int ShowMessage(const Redraw& redraw, const std::string& title,
                const std::vector<std::string>& lines);

}  // namespace ctdesign
