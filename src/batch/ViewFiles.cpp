#include "batch/Batch.h"
#include "pictures/ViewPictures.h"
#include "platform/Grid.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "shell/MainForm.h"
#include "spectrum/PeakLists.h"
#include "workspace/Workspace.h"

namespace zelvanor::batch {

namespace {

Text CsvCell(const Text& Value) {
  if (Value.find_first_of(",\"\r\n") == Text::npos) return Value;
  Text Result = "\"";
  for (const char C : Value) Result += C == '"' ? Text("\"\"") : Text(1, C);
  return Result + "\"";
}

// The table of the view as comma-separated values.
void WriteTable(const Text& Path) {
  const GridControl& Table = Main.ShieldTable;
  if (!IsSet(Table.Visible)) throw ScriptStop{CannotCarryOut, "the view holds no table"};
  Text Csv;
  for (int Row = 0; Row < RowsOf(Table); ++Row) {
    for (int Col = 0; Col < ColsOf(Table); ++Col) Csv += (Col > 0 ? "," : "") + CsvCell(CellText(Table, Row, Col));
    Csv += '\n';
  }
  WriteWholeFile(Path, Csv);
}

}  // namespace

void WriteView(const Text& Path) {
  if (EndingOf(Path) == ".CSV") return WriteTable(Path);
  pictures::WriteViewPicture(Path);
}

void SavePeaks(const Text& Path) {
  if (!IsSet(Workspace.SpectraAvailable)) throw ScriptStop{CannotCarryOut, "there is no spectrum to save"};
  const Text Ending = EndingOf(Path);
  if (Ending == ".CSV") return WriteWholeFile(Path, BuildPeakCsv());
  if (Ending == ".JDX" || Ending == ".DX") return WriteWholeFile(Path, BuildPeakJcamp());
  throw ScriptStop{CannotCarryOut, "a peak list is saved as .csv or .jdx: " + Path};
}

}  // namespace zelvanor::batch
