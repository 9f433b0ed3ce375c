#include "batch/Batch.h"
#include "batch/TextFile.h"
#include "platform/Grid.h"
#include "shell/MainForm.h"

namespace zelvanor::batch {

namespace {

Text CsvCell(const Text& Value) {
  if (Value.find_first_of(",\"\r\n") == Text::npos) return Value;
  Text Result = "\"";
  for (const char C : Value) Result += C == '"' ? Text("\"\"") : Text(1, C);
  return Result + "\"";
}

}  // namespace

void WriteTable(const Text& Path) {
  const GridControl& Table = Main.ShieldTable;
  if (!IsSet(Table.Visible)) throw ScriptStop{CannotCarryOut, "the view holds no table"};
  Text Csv;
  for (int Row = 0; Row < RowsOf(Table); ++Row) {
    for (int Col = 0; Col < ColsOf(Table); ++Col) Csv += (Col > 0 ? "," : "") + CsvCell(CellText(Table, Row, Col));
    Csv += '\n';
  }
  WriteText(Path, Csv);
}

}  // namespace zelvanor::batch
