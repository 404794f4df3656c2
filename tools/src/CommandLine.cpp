// CommandLine: the tool's command line on CLI11, dispatched to the subcommands (tools layer).
#include "CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <limits>
#include <sstream>

#include "CsvReader.h"
#include "Nearest.h"
#include "StringUtils.h"
#include "ToolError.h"

namespace ctt {

namespace {

constexpr const char* kDescription =
    "ctt: creates c-tree tables, loads CSV into them, lists, exports and describes them, copies\n"
    "records between tables and changes a table's layout with its records.\n"
    "Exit codes: 0 success, 1 internal error, 2 usage error, 3 file or CSV error, 4 storage error,\n"
    "5 table or index not found, 6 import rows or copied records rejected, 7 not available in this build,\n"
    "130/143 import stopped by SIGINT/SIGTERM.";

// Everything the command line sets; the parsers of definitions and keys run after CLI11.
struct Parsed {
  TableRef Table;
  ConnectionOptions Connection;
  std::string Alignment;
  int MaxBuffers = 0, MaxFiles = 0, MaxSectors = 0, MaxIndexKey = 0;
  std::string UserName, Password, ServerName, DataDir, TempDir, DataExt, IndexExt, SuperFileExt;
  std::vector<std::string> FieldTexts, IndexTexts, Columns;
  std::string IndexText, IndexName, From, To, Find, File, Filter, Separator = ",";
  std::string Destination, Mode = "copy";
  ImportOptions Import;
  CopyOptions Copy;
  ListOptions List;
  bool Replace = false, Compact = false;
  std::string Format, LineEnd, InfoFormat, TrueTexts, FalseTexts;
  bool NoHeader = false;
  std::size_t MaxWidth = 40;
  bool Progress = false, NoProgress = false;
};

// Counts are whole numbers of zero or more (CLI11 would take "-1" as the largest number).
const CLI::Validator kCount(
    [](std::string& text) {
      const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
      return digits ? std::string() : "'" + text + "' is not a count (a whole number of 0 or more)";
    },
    "COUNT");

std::vector<std::string> SplitList(const std::string& text) {
  std::vector<std::string> items;
  std::size_t start = 0;
  while (!text.empty() && start <= text.size()) {
    const std::size_t end = text.find(',', start);
    items.push_back(text.substr(start, end == std::string::npos ? std::string::npos : end - start));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return items;
}

KeyValues ParseKey(const std::string& text, const char* option) {
  if (text.empty()) return {};
  std::istringstream in(text);
  CsvReader reader(in);
  KeyValues values;
  try {
    reader.Next(values);
  } catch (const CsvError& e) {
    // The reader's message starts with "line 1: ", which says nothing about an option's value.
    const std::string what = e.what();
    throw UsageError(std::string(option) + " '" + text + "': " + what.substr(what.find(": ") + 2));
  }
  return values;
}

CopyMode ParseCopyMode(const std::string& text) {
  const std::pair<const char*, CopyMode> modes[] = {{"copy", CopyMode::Copy},
                                                    {"append", CopyMode::Append},
                                                    {"update", CopyMode::Update},
                                                    {"append-update", CopyMode::AppendUpdate},
                                                    {"delete", CopyMode::Delete}};
  for (const auto& [name, mode] : modes)
    if (fw::SameText(text, name)) return mode;
  throw UsageError("--mode '" + text + "': use copy, append, update, append-update or delete");
}

// The destination of copy: in the source's folder (and superfile), unless the text has a folder.
TableRef DestinationRef(const TableRef& source, const std::string& text) {
  if (text.empty()) throw UsageError("the destination table name is empty");
  const std::size_t slash = text.rfind('/');
  if (slash == std::string::npos) return {source.Directory, text, source.SuperFile};
  if (slash + 1 == text.size()) throw UsageError("destination '" + text + "' names a folder, not a table");
  return {text.substr(0, slash == 0 ? 1 : slash), text.substr(slash + 1), std::string()};
}

char ParseSeparator(const std::string& text) {
  if (text == "\\t" || text == "tab") return '\t';
  if (text.size() != 1 || text[0] == '"' || text[0] == '\r' || text[0] == '\n')
    throw UsageError("--separator takes one character other than a quote or a line end ('\\t' for a tab)");
  return text[0];
}

void AddConnectionOptions(CLI::App& app, Parsed& p) {
  const char* group = "Connection (override the form file)";
  app.add_option("--dir,-d", p.Table.Directory, "Directory of the table's files")->group(group);
  app.add_option("--superfile", p.Table.SuperFile, "The table is a member of this superfile")->group(group);
  app.add_option("--form", p.Connection.FormFile, "Read the connection settings from this text form file")->group(group);
  app.add_option("--form-component", p.Connection.FormComponent, "Name of the connection in the form file")->group(group);
  app.add_option("--alignment", p.Alignment, "Library variant: byte, word, dword, bytemon, bytered, bytecli")->group(group);
  app.add_option("--server", p.ServerName, "Server name (empty: the embedded engine)")->group(group);
  app.add_option("--user", p.UserName, "User name")->group(group);
  app.add_option("--password", p.Password, "Password")->group(group);
  app.add_option("--data-dir", p.DataDir, "The connection's DataDir")->group(group);
  app.add_option("--temp-dir", p.TempDir, "The connection's TempDir")->group(group);
  app.add_option("--data-ext", p.DataExt, "Extension of data files")->group(group);
  app.add_option("--index-ext", p.IndexExt, "Extension of index files")->group(group);
  app.add_option("--superfile-ext", p.SuperFileExt, "Extension of superfiles")->group(group);
  app.add_option("--max-files", p.MaxFiles, "Files open at most")->check(CLI::Range(1, 32767))->group(group);
  app.add_option("--max-buffers", p.MaxBuffers, "Index and data buffers")->check(CLI::Range(1, 32767))->group(group);
  app.add_option("--max-sectors", p.MaxSectors, "Node sectors")->check(CLI::Range(1, 32767))->group(group);
  app.add_option("--max-index-key", p.MaxIndexKey, "Longest key")->check(CLI::Range(1, 65535))->group(group);
}

// Copies the connection settings given on the command line into the options.
void CollectConnection(CLI::App& app, Parsed& p) {
  ConnectionOptions& c = p.Connection;
  auto given = [&app](const char* name) { return app.get_option(name)->count() > 0; };
  if (given("--alignment")) c.Alignment = ParseAlignment(p.Alignment);
  if (given("--server")) c.ServerName = p.ServerName;
  if (given("--user")) c.UserName = p.UserName;
  if (given("--password")) c.Password = p.Password;
  if (given("--data-dir")) c.DataDir = p.DataDir;
  if (given("--temp-dir")) c.TempDir = p.TempDir;
  if (given("--data-ext")) c.DataExt = p.DataExt;
  if (given("--index-ext")) c.IndexExt = p.IndexExt;
  if (given("--superfile-ext")) c.SuperFileExt = p.SuperFileExt;
  if (given("--max-files")) c.MaxFiles = static_cast<std::int16_t>(p.MaxFiles);
  if (given("--max-buffers")) c.MaxBuffers = static_cast<std::int16_t>(p.MaxBuffers);
  if (given("--max-sectors")) c.MaxSectors = static_cast<std::int16_t>(p.MaxSectors);
  if (given("--max-index-key")) c.MaxIndexKey = p.MaxIndexKey;
  // Indexes the tool creates keep the records whose key is blank: an index that left them out
  // would hide them from list and export and from the count of info, while import said "added".
  c.NullKeys = true;
}

CLI::App* AddCommand(CLI::App& app, const char* name, const char* what, Parsed& p) {
  CLI::App* cmd = app.add_subcommand(name, what);
  cmd->add_option("table", p.Table.Name, "The table's name")->required();
  return cmd;
}

void AddReadOptions(CLI::App* cmd, Parsed& p) {
  cmd->add_option("--index,-i", p.IndexName, "Read in the order of this index (default: the first)");
  cmd->add_option("--from", p.From, "Start of the key range, values comma-separated as in CSV");
  cmd->add_option("--to", p.To, "End of the key range (included)");
  cmd->add_option("--columns,-c", p.Columns, "Fields to show, in this order")->delimiter(',');
  cmd->add_option("--filter", p.Filter, "Only records for which this filter is true, e.g. '(\"CITY\" = 'Oslo') AND (\"ID\" > 3)'");
}

void AddFormatOptions(CLI::App* cmd, Parsed& p, const char* defaultFormat) {
  cmd->add_option("--format", p.Format, std::string("csv, tsv, json, table or markdown (default ") + defaultFormat + ")");
  cmd->add_flag("--no-header", p.NoHeader, "Leave out the line naming the columns");
  cmd->add_option("--line-end", p.LineEnd, "lf or crlf, for csv and tsv");
}

RowFormat CollectFormat(const Parsed& p, RowFormat format) {
  if (!p.Format.empty()) format.Format = ParseOutputFormat(p.Format);
  format.Header = !p.NoHeader;
  if (fw::SameText(p.LineEnd, "lf"))
    format.LineEnd = "\n";
  else if (fw::SameText(p.LineEnd, "crlf"))
    format.LineEnd = "\r\n";
  else if (!p.LineEnd.empty())
    throw UsageError("--line-end '" + p.LineEnd + "': choose lf or crlf");
  format.Separator = ParseSeparator(p.Separator);
  format.MaxWidth = p.MaxWidth;
  return format;
}

ReadOptions CollectRead(const Parsed& p) {
  ReadOptions read;
  read.Index = p.IndexName;
  read.From = ParseKey(p.From, "--from");
  read.To = ParseKey(p.To, "--to");
  read.Columns = p.Columns;
  read.Filter = p.Filter;
  return read;
}

}  // namespace

int RunTool(const std::vector<std::string>& args, Console& console, const BackendFactory& factory) {
  CLI::App app(kDescription, "ctt");
  app.require_subcommand(1);
  app.fallthrough();
  app.set_version_flag("--version", "ctt " CT_VERSION);
  Parsed p;
  AddConnectionOptions(app, p);
  app.add_flag("--progress", p.Progress, "Draw progress bars even when standard error is not a terminal");
  app.add_flag("--no-progress", p.NoProgress, "Draw no progress bars");

  CLI::App* create = AddCommand(app, "create", "Create a table (an existing one only with --replace)", p);
  create->add_option("--field,-f", p.FieldTexts, "name:type[:size], several comma-separated")->required();
  create->add_option("--index,-x", p.IndexTexts, "name:field[;field...][:unique,primary,desc,nocase]");
  create->add_flag("--replace", p.Replace, "Replace an existing table of that name, deleting its records");

  CLI::App* import = AddCommand(app, "import", "Load CSV rows (with a header row) into a table", p);
  import->add_option("file", p.File, "CSV file, '-' for standard input")->required();
  import->add_option("--field,-f", p.FieldTexts, "Create the table with these fields first");
  import->add_option("--index,-x", p.IndexTexts, "Indexes of the table created with --field");
  import->add_flag("--replace", p.Replace, "With --field: replace an existing table, deleting its records");
  import->add_option("--batch-size", p.Import.BatchSize, "Rows per transaction (default 0: one for all)")
      ->check(kCount);
  import->add_option("--skip-rows", p.Import.SkipRows, "Pass over this many data rows first (resuming)")
      ->check(kCount);
  import->add_flag("--stop-on-error", p.Import.StopOnError, "Roll back the batch and stop at the first bad row");
  import->add_flag("--skip-existing", p.Import.SkipExisting,
                   "Count rows whose unique key the table holds as already there (resuming after a kill)");
  import->add_option("--separator", p.Separator, "Field separator (default ',')");
  import->add_option("--null", p.Import.Spellings.Null, "A cell with this text leaves its field blank (as an empty one does)");
  import->add_option("--true", p.TrueTexts, "More spellings of true, comma-separated (true, yes, 1 always work)");
  import->add_option("--false", p.FalseTexts, "More spellings of false, comma-separated (false, no, 0 always work)");
  import->add_flag("--truncate", p.Import.Spellings.Truncate, "Cut text longer than its field at a character boundary (default: reject the row)");
  import->add_option("--date-format", p.Import.DateFormat, "Order and separator of dates, e.g. dd.mm.yyyy (default yyyy-mm-dd)");

  CLI::App* exportCmd = AddCommand(app, "export", "Write a table's records as CSV (or another format)", p);
  exportCmd->add_option("file", p.File, "Output file, '-' or nothing for standard output");
  exportCmd->add_option("--separator", p.Separator, "Field separator of csv (default ',')");
  AddFormatOptions(exportCmd, p, "csv with CR LF line ends");
  AddReadOptions(exportCmd, p);

  CLI::App* list = AddCommand(app, "list", "Show records as an aligned table (or another format)", p);
  AddReadOptions(list, p);
  AddFormatOptions(list, p, "table");
  list->add_option("--find", p.Find, "Start at the nearest key at or after these values");
  list->add_option("--limit,-n", p.List.Limit, "Records shown at most (0: all)")->check(kCount);
  list->add_option("--width", p.MaxWidth, "Widest column in screen columns")->check(CLI::Range(4, 1000));

  CLI::App* info = AddCommand(app, "info", "Show fields, indexes, record count and files", p);
  info->add_option("--format", p.InfoFormat, "text (default) or create: the ctt create command for the same layout");
  CLI::App* check = AddCommand(app, "check", "Read every page of a table's data file and report damage", p);
  CLI::App* addIndex = AddCommand(app, "add-index", "Add an index to a table", p);
  addIndex->add_option("definition", p.IndexText, "name:field[;field...][:options]")->required();
  CLI::App* dropIndex = AddCommand(app, "drop-index", "Delete an index of a table", p);
  dropIndex->add_option("index", p.IndexName, "The index's name")->required();
  CLI::App* drop = AddCommand(app, "drop", "Delete a table's files", p);
  CLI::App* tables = app.add_subcommand("tables", "List the tables of a folder, superfile members included");
  tables->add_option("folder", p.Table.Directory, "The folder (default: --dir, else the current one)");

  CLI::App* copy = AddCommand(app, "copy", "Copy, append, update or delete records of one table in another", p);
  copy->add_option("destination", p.Destination, "The table written (in --dir unless it has a folder: dir/name)")
      ->required();
  copy->add_option("--mode", p.Mode, "copy (default), append, update, append-update or delete");
  copy->add_flag("--replace", p.Copy.Replace, "With --mode copy: replace an existing destination, deleting its records");
  copy->add_flag("--stop-on-error", p.Copy.StopOnError, "Stop at the first rejected record");
  CLI::App* rebuild = AddCommand(app, "rebuild", "Rebuild a table's data and index files in place", p);
  rebuild->add_flag("--compact", p.Compact, "Also give the data file's free space back (the file is copied)");
  CLI::App* alter = AddCommand(app, "alter", "Give a table new fields and indexes, keeping its records", p);
  alter->add_option("--field,-f", p.FieldTexts, "name:type[:size], several comma-separated: the new fields")
      ->required();
  alter->add_option("--index,-x", p.IndexTexts, "name:field[;field...][:options]: the new indexes");

  try {
    std::vector<std::string> reversed(args.size() > 1 ? args.begin() + 1 : args.end(), args.end());
    std::reverse(reversed.begin(), reversed.end());
    app.parse(reversed);
  } catch (const CLI::CallForHelp&) {
    console.Out << app.help();
    return kExitOk;
  } catch (const CLI::CallForVersion& e) {
    console.Out << e.what() << '\n';
    return kExitOk;
  } catch (const CLI::ParseError& e) {
    if (e.get_exit_code() == 0) {
      console.Out << app.help();
      return kExitOk;
    }
    console.Err << "ctt: " << e.what() << '\n';
    // Name the option a mistyped one resembles, among those of the command given.
    std::vector<std::string> options;
    for (const CLI::App* scope : {&app, app.get_subcommands().empty() ? &app : app.get_subcommands().front()})
      for (const CLI::Option* option : scope->get_options())
        for (const std::string& name : option->get_lnames()) options.push_back("--" + name);
    for (std::size_t i = 1; i < args.size(); ++i) {
      const std::string typed = args[i].substr(0, args[i].find('='));
      if (!typed.starts_with("--") || std::find(options.begin(), options.end(), typed) != options.end()) continue;
      if (const std::string near = Nearest(typed, options); !near.empty())
        console.Err << "Did you mean '" << near << "' for '" << typed << "'?\n";
    }
    // A mistyped command: the first word that resembles one.
    if (app.get_subcommands().empty()) {
      std::vector<std::string> commands;
      for (const CLI::App* command : app.get_subcommands({})) commands.push_back(command->get_name());
      for (std::size_t i = 1; i < args.size(); ++i) {
        if (args[i].empty() || args[i][0] == '-') continue;
        if (const std::string near = Nearest(args[i], commands); !near.empty()) {
          console.Err << "Did you mean '" << near << "'?\n";
          break;
        }
      }
      std::string list;
      for (const std::string& command : commands) list += (list.empty() ? "" : ", ") + command;
      console.Err << "Commands: " << list << ".\n";
    }
    console.Err << "Run 'ctt --help' or 'ctt <command> --help' for the options.\n";
    return kExitUsage;
  }
  if (p.Progress && p.NoProgress) {
    console.Err << "ctt: --progress and --no-progress exclude each other\n";
    return kExitUsage;
  }
  if (p.Progress) console.ErrIsTerminal = true;
  if (p.NoProgress) console.ErrIsTerminal = false;

  std::string name = "ctt";
  try {
    CLI::App* chosen = app.get_subcommands().front();
    name = chosen->get_name();
    CollectConnection(app, p);
    if (chosen == tables) return RunTables(*factory(p.Connection), p.Table.Directory, console);
    if (p.Table.Name.empty()) throw UsageError("the table name is empty");
    if (chosen == create) {
      CreateOptions options{ParseFieldDefinitions(p.FieldTexts), ParseIndexDefinitions(p.IndexTexts), p.Replace};
      if (options.Fields.empty()) throw UsageError("a table needs at least one field (--field name:type[:size])");
      for (const IndexDefinition& index : options.Indexes) CheckIndexFields(index, options.Fields);
      return RunCreate(*factory(p.Connection), p.Table, options, console);
    }
    if (chosen == import) {
      ImportOptions options = p.Import;
      options.File = p.File;
      options.Separator = ParseSeparator(p.Separator);
      options.Fields = ParseFieldDefinitions(p.FieldTexts);
      options.Indexes = ParseIndexDefinitions(p.IndexTexts);
      options.Replace = p.Replace;
      options.Spellings.True = SplitList(p.TrueTexts);
      options.Spellings.False = SplitList(p.FalseTexts);
      if (options.Replace && options.Fields.empty()) throw UsageError("--replace on import needs --field");
      if (options.Fields.empty() && !options.Indexes.empty())
        throw UsageError("--index on import needs --field: indexes are only defined for a table created here");
      for (const IndexDefinition& index : options.Indexes) CheckIndexFields(index, options.Fields);
      return RunImport(*factory(p.Connection), p.Table, options, console);
    }
    if (chosen == exportCmd) {
      ExportOptions options;
      options.Read = CollectRead(p);
      options.File = p.File;
      options.Format = CollectFormat(p, options.Format);
      return RunExport(*factory(p.Connection), p.Table, options, console);
    }
    if (chosen == list) {
      ListOptions options = p.List;
      options.Read = CollectRead(p);
      options.Format = CollectFormat(p, options.Format);
      options.Find = ParseKey(p.Find, "--find");
      return RunList(*factory(p.Connection), p.Table, options, console);
    }
    if (chosen == info) {
      if (!p.InfoFormat.empty() && !fw::SameText(p.InfoFormat, "text") && !fw::SameText(p.InfoFormat, "create"))
        throw UsageError("--format '" + p.InfoFormat + "': choose text or create");
      return RunInfo(*factory(p.Connection), p.Table, fw::SameText(p.InfoFormat, "create"), console);
    }
    if (chosen == check) return RunCheck(*factory(p.Connection), p.Table, console);
    if (chosen == addIndex) return RunAddIndex(*factory(p.Connection), p.Table, ParseIndexDefinition(p.IndexText), console);
    if (chosen == dropIndex) return RunDropIndex(*factory(p.Connection), p.Table, p.IndexName, console);
    if (chosen == drop) return RunDrop(*factory(p.Connection), p.Table, console);
    if (chosen == copy) {
      CopyOptions options = p.Copy;
      options.Mode = ParseCopyMode(p.Mode);
      if (options.Replace && options.Mode != CopyMode::Copy) throw UsageError("--replace goes with --mode copy only");
      return RunCopy(*factory(p.Connection), p.Table, DestinationRef(p.Table, p.Destination), options, console);
    }
    if (chosen == rebuild) return RunRebuild(*factory(p.Connection), p.Table, p.Compact, console);
    if (chosen == alter)
      return RunAlter(*factory(p.Connection), p.Table, ParseFieldDefinitions(p.FieldTexts),
                      ParseIndexDefinitions(p.IndexTexts), console);
    throw ToolError(kExitInternal, "no handler for command '" + name + "'");
  } catch (...) {
    const ErrorReport report = DescribeException(std::current_exception());
    console.Err << "ctt: " << name << ": " << report.Message << '\n';
    return report.Code;
  }
}

}  // namespace ctt
