// CsvWriter: quoting only where a reader would otherwise misread the field (tools layer).
#include "CsvWriter.h"

namespace ctt {

CsvWriter::CsvWriter(std::ostream& output, char separator, std::string lineEnd)
    : FOutput(output), FSeparator(separator), FLineEnd(std::move(lineEnd)) {}

void CsvWriter::AppendField(std::string& out, std::string_view field, char separator) {
  bool quote = !field.empty() && (field.front() == ' ' || field.back() == ' ' ||
                                  field.front() == '\t' || field.back() == '\t');
  for (char c : field) {
    if (c == separator || c == '"' || c == '\r' || c == '\n') {
      quote = true;
      break;
    }
  }
  if (!quote) {
    out.append(field);
    return;
  }
  out.push_back('"');
  for (char c : field) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
}

void CsvWriter::WriteRow(const std::vector<std::string>& fields) {
  FScratch.clear();
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (i > 0) FScratch.push_back(FSeparator);
    AppendField(FScratch, fields[i], FSeparator);
  }
  // A record of one empty field would read back as an empty line, which readers skip.
  if (fields.size() == 1 && fields[0].empty()) FScratch = "\"\"";
  FScratch += FLineEnd;
  FOutput.write(FScratch.data(), static_cast<std::streamsize>(FScratch.size()));
}

}  // namespace ctt
