#include "nmrcalc/input/Tables.h"

#include "basic/Failure.h"
#include "basic/TextTools.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

std::string_view WithoutComment(const std::string& Text) {
  return zelvanor::TrimWhite(std::string_view(Text).substr(0, Text.find(';')));
}

Table* OpenTable(const TextFile& File, std::size_t Line, std::string_view Text, TableFile& Result) {
  if (Text.back() != ']') FailAtLine(File, Line, "the heading of a table should end in ]");
  const auto Words = SplitTokens(Text.substr(1, Text.size() - 2));
  if (Words.size() < 2) FailAtLine(File, Line, "the heading of a table has a name and at least one column");
  const auto [Place, New] = Result.Tables.try_emplace(std::string(Words[0]));
  if (!New) FailAtLine(File, Line, "the table " + std::string(Words[0]) + " is there twice");
  Place->second.Columns.assign(Words.begin() + 1, Words.end());
  Place->second.Line = Line;
  return &Place->second;
}

void AddRow(const TextFile& File, std::size_t Line, std::string_view Text, Table& Target) {
  const auto Words = SplitTokens(Text);
  const std::string Key(Words[0]);
  if (Words.size() != Target.Columns.size() + 1) {
    FailAtLine(File, Line,
               "the row " + Key + " should have " + std::to_string(Target.Columns.size()) + " numbers, but has " +
                   std::to_string(Words.size() - 1));
  }
  std::vector<double> Numbers;
  for (std::size_t K = 1; K < Words.size(); ++K) {
    Numbers.push_back(NumberAt(File, Line, Words[K], Target.Columns[K - 1] + " of " + Key));
  }
  if (!Target.Rows.emplace(Key, std::move(Numbers)).second)
    FailAtLine(File, Line, "the row " + Key + " is there twice");
}

}  // namespace

TableFile ReadTables(const std::string& Path, const std::vector<RequiredTable>& Required) {
  const TextFile File = ReadTextFile(Path);
  TableFile Result{.Path = Path};
  Table* Current = nullptr;
  for (std::size_t Line = 0; Line < File.Lines.size(); ++Line) {
    const std::string_view Text = WithoutComment(File.Lines[Line]);
    if (Text.empty()) continue;
    if (Text.front() == '[') {
      Current = OpenTable(File, Line, Text, Result);
    } else if (Current == nullptr) {
      FailAtLine(File, Line, "a row stands before the first table");
    } else {
      AddRow(File, Line, Text, *Current);
    }
  }
  for (const RequiredTable& Need : Required) {
    const auto Found = Result.Tables.find(Need.Name);
    if (Found == Result.Tables.end()) throw zelvanor::Failure(Path + ": the table " + Need.Name + " is missing");
    if (Found->second.Columns.size() != Need.Columns) {
      FailAtLine(File, Found->second.Line,
                 std::string("the table ") + Need.Name + " should have " + std::to_string(Need.Columns) + " columns");
    }
  }
  return Result;
}

const std::vector<double>* FindRow(const TableFile& File, std::string_view TableName, std::string_view Key) {
  const auto Table = File.Tables.find(TableName);
  if (Table == File.Tables.end()) return nullptr;
  const auto Row = Table->second.Rows.find(Key);
  return Row == Table->second.Rows.end() ? nullptr : &Row->second;
}

double TableValue(const TableFile& File, std::string_view TableName, std::string_view Key, std::size_t Column) {
  const std::vector<double>* Row = FindRow(File, TableName, Key);
  if (Row == nullptr) {
    throw zelvanor::Failure(File.Path + ": the table " + std::string(TableName) + " has no row " + std::string(Key));
  }
  return Row->at(Column);
}

}  // namespace nmrcalc
