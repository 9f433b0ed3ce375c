#include <algorithm>

#include "batch/Batch.h"
#include "measured/CurveFiles.h"
#include "pictures/ViewPictures.h"
#include "platform/Grid.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "report/Report.h"
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

void SaveSpectrum(const std::vector<Argument>& All) {
  if (All.size() == 2 && EndingOf(All[1].Value) == ".SDF") return WriteWholeFile(All[1].Value, BuildNmreData());
  struct Saved {
    const char* Word;
    const char* What;
    Text (*Csv)();
    Text (*Jcamp)();
  };
  constexpr Saved Peaks = {"", "a peak list", BuildPeakCsv, BuildPeakJcamp};
  constexpr Saved Curves[] = {{"envelope", "an envelope", BuildEnvelopeCsv, BuildEnvelopeJcamp},
                              {"measured", "a measured spectrum", BuildMeasuredCsv, BuildMeasuredJcamp}};
  const auto* const Named = std::find_if(std::begin(Curves), std::end(Curves), [&](const Saved& Each) {
    return All.size() > 2 && All[1].Value == Each.Word;
  });
  const bool IsCurve = Named != std::end(Curves);
  if (!IsCurve && !IsSet(Workspace.SpectraAvailable)) {
    throw ScriptStop{CannotCarryOut, "there is no spectrum to save"};
  }
  const Saved& Wanted = IsCurve ? *Named : Peaks;
  const Text& Path = All[IsCurve ? 2 : 1].Value;
  const Text Ending = EndingOf(Path);
  if (Ending == ".CSV") return WriteWholeFile(Path, Wanted.Csv());
  if (Ending == ".JDX" || Ending == ".DX") return WriteWholeFile(Path, Wanted.Jcamp());
  throw ScriptStop{CannotCarryOut, Text(Wanted.What) + " is saved as .csv or .jdx: " + Path};
}

}  // namespace zelvanor::batch
