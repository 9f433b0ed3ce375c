#include "measured/frmExport.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "files/FileCommands.h"
#include "measured/CurveFiles.h"
#include "measured/MeasuredTrace.h"
#include "platform/Form.h"
#include "platform/TextFiles.h"
#include "shell/Frame.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct ExportForm {
  Form frmExport{"frmExport"};
  ListBox List1{&frmExport, "List1"};
  Label Label1{&frmExport, "Label1"};
  TextField Text1{&frmExport, "Text1"};  // dots an inch
  CommandButton Command1{&frmExport, "Command1"};
  CommandButton Command2{&frmExport, "Command2"};
};

ExportForm Dialog;

constexpr Double ScreenDots = 96.0;  // an inch
constexpr Double FewestDots = 24.0;
constexpr Double MostDots = 1200.0;

bool Always() { return true; }
bool HasPeaks() { return IsSet(Workspace.SpectraAvailable); }

// What can be written. A picture has no routine of its own: the front end writes it.
struct Kind {
  const char* Caption;
  const char* Ending;
  bool (*IsThere)();
  Text (*Build)();
};
constexpr Kind Kinds[] = {{"Picture (SVG)", "svg", Always, nullptr},
                          {"Picture (PNG)", "png", Always, nullptr},
                          {"Picture (PDF)", "pdf", Always, nullptr},
                          {"Lines (CSV)", "csv", HasPeaks, BuildPeakCsv},
                          {"Lines (JCAMP-DX)", "jdx", HasPeaks, BuildPeakJcamp},
                          {"Envelope (CSV)", "csv", HasPeaks, BuildEnvelopeCsv},
                          {"Envelope (JCAMP-DX)", "jdx", HasPeaks, BuildEnvelopeJcamp},
                          {"Measured spectrum (CSV)", "csv", HasMeasured, BuildMeasuredCsv},
                          {"Measured spectrum (JCAMP-DX)", "jdx", HasMeasured, BuildMeasuredJcamp}};

std::vector<const Kind*> Offered;

void Write(const Kind& Chosen, const Text& Path) {
  if (Chosen.Build != nullptr) return WriteWholeFile(Path, Chosen.Build());
  if (!Platform.WriteViewPicture) throw Failure("pictures can't be written here");
  Platform.WriteViewPicture(Path, StrictNumber(Dialog.Text1.Value) / ScreenDots);
}

bool AreDotsGood() {
  try {
    const Double Dots = StrictNumber(Dialog.Text1.Value);
    if (Dots >= FewestDots && Dots <= MostDots) return true;
  } catch (const Failure&) {
    // Told below.
  }
  ShowWarning(Join(Quoted(Dialog.Text1.Value), " is no resolution from ", FewestDots, " to ", MostDots, " dpi."));
  SetFocus(Dialog.Text1);
  return false;
}

void Ok_Click() {
  const auto Row = static_cast<std::size_t>(std::max(Dialog.List1.ListIndex, 0));
  if (Row >= Offered.size() || !AreDotsGood()) return;
  const Kind& Chosen = *Offered[Row];
  const std::optional<Text> Path = Platform.ShowFileDialog({.Title = "Export",
                                                            .FileName = Join("*.", Chosen.Ending),
                                                            .Filter = Join(Chosen.Caption, "|*.", Chosen.Ending),
                                                            .DefaultExtension = Chosen.Ending,
                                                            .Save = true});
  if (!Path || !MayReplaceFile(*Path)) return;
  try {
    Write(Chosen, *Path);
  } catch (const Failure& Problem) {
    return ShowWarning(Join("Could not write ", *Path, ": ", Problem.What, "."));
  }
  HideForm(Dialog.frmExport);
  ShowStatus(Join("Written: ", *Path));
}

void List1_Click() {
  const auto Row = static_cast<std::size_t>(std::max(Dialog.List1.ListIndex, 0));
  SetEnabled(Dialog.Text1, ToFlag(Row < Offered.size() && Text(Offered[Row]->Ending) == "png"));
}

}  // namespace

void mnuFileExport_Click() {
  Offered.clear();
  std::vector<Text> Rows;
  for (const Kind& Each : Kinds) {
    if (!Each.IsThere()) continue;
    Offered.push_back(&Each);
    Rows.emplace_back(Each.Caption);
  }
  SetItems(Dialog.List1, Rows);
  SetListIndex(Dialog.List1, 0);
  List1_Click();
  ShowModal(Dialog.frmExport);
}

void BuildExportForm() {
  ExportForm& D = Dialog;
  D.frmExport.Caption = "Export";
  D.List1.AccessibleName = "What to write";
  D.List1.Click = List1_Click;
  D.Label1.Caption = "&Resolution of PNG (dpi):";
  D.Text1.Value = "300";
  SetUpOkAndCancel(D.Command1, "&Save As...", Ok_Click, D.Command2, [] { HideForm(Dialog.frmExport); });
  D.frmExport.Layout = ColumnOf({ItemOf(D.List1), RowOf({ItemOf(D.Label1), ItemOf(D.Text1), StretchOf()}),
                                 RowOf({StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
