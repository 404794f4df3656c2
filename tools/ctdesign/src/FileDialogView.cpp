// FileDialogView: a keyboard file picker over FindFirst/FindNext.
#include "FileDialogView.h"

#include <curses.h>

#include <algorithm>
#include <filesystem>

#include "FileSearch.h"
#include "StringUtils.h"
#include "TOpenDialog.h"

namespace ctdesign {

namespace {

bool HasWildcard(const std::string& s) { return s.find_first_of("*?") != std::string::npos; }

// Folders first (ending in "/", "../" leading), then the matching files, each sorted.
std::vector<std::string> List(const std::string& dir, const std::string& mask) {
  std::vector<std::string> folders{"../"}, files;
  fw::TSearchRec rec;
  const std::string base = dir.empty() ? std::string() : fw::IncludeTrailingPathDelimiter(dir);
  if (fw::FindFirst(base + "*", fw::faDirectory, rec) == 0) {
    do {
      if (rec.Attr & fw::faDirectory) folders.push_back(rec.Name + "/");
    } while (fw::FindNext(rec) == 0);
  }
  if (fw::FindFirst(base + mask, fw::faAnyFile & ~fw::faDirectory, rec) == 0) {
    do {
      files.push_back(rec.Name);
    } while (fw::FindNext(rec) == 0);
  }
  std::sort(folders.begin() + 1, folders.end());
  std::sort(files.begin(), files.end());
  folders.insert(folders.end(), files.begin(), files.end());
  return folders;
}

std::string Absolute(const std::string& path) {
  if (!path.empty() && path.front() == fw::PathDelim) return path;
  return fw::IncludeTrailingPathDelimiter(fw::GetCurrentDir()) + path;
}

}  // namespace

bool RunFileDialog(const Redraw& redraw, fw::TOpenDialog& dialog) {
  const auto filters = dialog.FilterPairs();
  const std::string filterMask =
      filters.empty() || filters.front().second.empty() ? "*" : filters.front().second;
  const std::string filterText =
      filters.empty() ? "All files (*)" : filters.front().first + " (" + filterMask + ")";
  std::string field = dialog.FileName().empty() ? filterMask : dialog.FileName();
  std::string dir = fw::ExtractFilePath(field);
  std::string mask =
      HasWildcard(fw::ExtractFileName(field)) ? fw::ExtractFileName(field) : filterMask;
  std::vector<std::string> listing = List(dir, mask);
  ListCursor cursor;
  bool picking = false;  // the list's selection, not the typed field, is what Enter takes
  std::string problem;
  for (;;) {
    redraw();
    const int height = std::max(Screen::Rows() - 4, 8);
    const int width = std::max(Screen::Cols() - 8, 30);
    auto [row, col] = DrawPopup(height, width, "Open");
    PutText(row + 1, col + 2, width - 4,
            filterText + "   in " + (dir.empty() ? fw::GetCurrentDir() : dir));
    PutText(row + 2, col + 2, 6, "File:");
    PutText(row + 2, col + 8, width - 10, field, picking ? 0 : AttrSelected());
    const int rows = height - 6;
    DrawList(row + 3, col + 2, rows, width - 4, listing, cursor, picking);
    PutText(row + height - 3, col + 2, width - 4, problem, AttrError());
    PutText(row + height - 2, col + 2, width - 4,
            "Up/Down pick  Enter open/choose  type a name or mask  Esc cancel", AttrDim());
    Present();
    const int key = ReadKey();
    problem.clear();
    if (key == kEscape) return false;
    if (cursor.HandleKey(key, static_cast<int>(listing.size()), rows)) {
      picking = true;
      field = (dir.empty() ? std::string() : fw::IncludeTrailingPathDelimiter(dir)) +
              listing[static_cast<size_t>(cursor.Selected)];
      continue;
    }
    if (IsEnter(key)) {
      const std::string name = fw::ExtractFileName(field);
      if (name.empty() || fw::DirectoryExists(field)) {  // a folder: open it
        const std::filesystem::path folder = Absolute(field.empty() ? "." : field);
        dir = fw::IncludeTrailingPathDelimiter(std::filesystem::weakly_canonical(folder).string());
        field = dir + mask;
      } else if (HasWildcard(name)) {
        dir = fw::ExtractFilePath(field);
        mask = name;
      } else if (fw::FileExists(field)) {
        dialog.SetFileName(Absolute(field));
        return true;
      } else {
        problem = "No file " + field;
        continue;
      }
      listing = List(dir, mask);
      cursor = ListCursor();
      picking = false;
      continue;
    }
    picking = false;
    if (key == kClearLine) {
      field.clear();
    } else if (IsBackspace(key)) {
      if (!field.empty()) field.pop_back();
    } else if (IsText(key)) {
      field += static_cast<char>(key);
    }
  }
}

}  // namespace ctdesign
