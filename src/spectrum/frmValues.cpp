#include "spectrum/frmValues.h"

#include <cmath>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "shell/Frame.h"
#include "shell/HelpTopics.h"
#include "tables/BarPlots.h"
#include "tables/ClipboardText.h"
#include "tables/ShieldTensor.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Measures in twips: of the columns, and of the room that the dialog leaves beside the table.
constexpr int TitleWidth = 1500;
constexpr int PeakWidth = 1000;
constexpr int RoomBelow = 1500;
constexpr int RoomRight = 130;
constexpr int ButtonHeight = 400;
constexpr int ButtonDrop = 350;

constexpr const char* ValuePattern = "#0.0##";

struct ValuesForm {
  Form frmValues{"frmValues"};
  GridControl Grid1{&frmValues, "Grid1"};
  CommandButton Command1{&frmValues, "Command1"};
  CommandButton Command2{&frmValues, "Command2"};
  CommandButton Command3{&frmValues, "Command3"};
};

ValuesForm Values;

// The rows below the header, and what each shows of a peak.
struct ValueRow {
  const char* Title;
  Double (*Value)(Long Peak);
};

constexpr ValueRow ValueRows[] = {
    {"Chemical Shift", [](Long Peak) { return Divide(-Double{W.PeakFrequency[Peak]}, W.NMRFrequency); }},
    {"Frequency", [](Long Peak) { return -Double{W.PeakFrequency[Peak]}; }},
    {"Intensity", [](Long Peak) { return Double{W.PeakIntensity[Peak]}; }},
    {"Degeneracy", [](Long Peak) { return Double(W.PeakDegeneracy[Peak]); }},
    {"Line Width", [](Long Peak) { return Double{W.PeakLineWidth[Peak]}; }},
};

// The list ends in front of a jump: a tighter cut than the spectrum's own, for the table alone.
bool EndsTable(Long Peak) {
  constexpr Single ZeroFrequency = 0.001F;
  constexpr Single LargestJump = 10.0F;
  constexpr Double SpanShare = 10.0;
  const Single Frequency = W.PeakFrequency[Peak];
  const Single Next = W.PeakFrequency[Peak + 1];
  if (std::fabs(Frequency) > ZeroFrequency) return std::fabs(Next / Frequency) > LargestJump;
  return Next > Double(W.SpectrumSpan) * W.NMRFrequency / SpanShare;
}

Long CountListedPeaks() {
  if (W.PeakCount < 2) return W.PeakCount;
  for (Long Peak = 0; Peak < W.PeakCount; ++Peak) {
    if (EndsTable(Peak)) return Peak + 1;
  }
  return W.PeakCount;
}

void WriteSpectralValues(Long Count) {
  GridControl& Grid = Values.Grid1;
  SetPlace(Grid, 0, 0, Grid.Width, Grid.Height);
  SetFixedCells(Grid, 1, 1);
  SetGridSize(Grid, static_cast<int>(std::size(ValueRows)) + 1, Count + 1);
  for (Long Peak = 0; Peak < Count; ++Peak) {
    SetColWidth(Grid, Peak + 1, PeakWidth);
    SetCellText(Grid, 0, Peak + 1, GeneralForm(Long{Peak + 1}));
  }
  SetColWidth(Grid, 0, TitleWidth);
  SetCellText(Grid, 0, 0, "");
  int Row = 1;
  for (const ValueRow& Line : ValueRows) {
    SetCellText(Grid, Row, 0, Line.Title);
    for (Long Peak = 0; Peak < Count; ++Peak) {
      SetCellText(Grid, Row, Peak + 1, FormatNumber(Line.Value(Peak), ValuePattern));
    }
    ++Row;
  }
}

void LayOutValues() {
  const int Width = Values.frmValues.Width;
  const int Height = Values.frmValues.Height;
  SetVisible(Values.Grid1, False);
  SetPlace(Values.Grid1, 0, 0, Width > RoomRight ? Width - RoomRight : 0, Height > RoomBelow ? Height - RoomBelow : 0);
  if (Height > RoomBelow) {
    const int Top = Height - RoomBelow + ButtonDrop;
    const auto Place = [&](CommandButton& Button, int Tenths) {
      SetPlace(Button, Tenths * Width / 10, Top, 2 * Width / 10, ButtonHeight);
    };
    Place(Values.Command1, 7);
    Place(Values.Command3, 4);
    Place(Values.Command2, 1);
  }
  SetVisible(Values.Grid1, True);
}

void Command1_Click() { HideForm(Values.frmValues); }
void Command3_Click() { CopyValuesSelection(Values.Grid1); }

}  // namespace

GridControl& ValuesGrid() { return Values.Grid1; }

Flag FillSpectralValues() {
  try {
    if (W.PeakCount > MostListedPeaks) {
      ShowWarning(
          "There are too many peaks to display in the Spectral Values dialog box.  The maximum number of peaks is "
          "5449.");
      return False;
    }
    WriteSpectralValues(CountListedPeaks());
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

void mnuViewValues_Click() {
  Flag Filled = False;
  if (W.ViewMode == ShieldingView) {
    SetCaption(Values.frmValues, "Shielding Tensor");
    Values.frmValues.HelpContext = TensorHelp;
    Filled = ShowShieldTensor(Values.Grid1);
  } else if (W.ViewMode == SpectrumViewMode) {
    SetCaption(Values.frmValues, "Spectral Values");
    Values.frmValues.HelpContext = SpectralValuesHelp;
    Filled = FillSpectralValues();
  }
  if (IsSet(Filled)) ShowModal(Values.frmValues);
}

void BuildValuesForm() {
  constexpr int FirstWidth = 10500;  // twips
  constexpr int FirstHeight = 5400;
  Values.frmValues.Width = FirstWidth;
  Values.frmValues.Height = FirstHeight;
  Values.frmValues.Load = LayOutValues;
  Values.frmValues.Activate = LayOutValues;
  Values.frmValues.Resize = LayOutValues;
  Values.Grid1.AccessibleName = "Values";
  Values.Grid1.KeyPress = [](int& /*KeyAscii*/) { SetFocus(Values.Command1); };
  Values.Grid1.MouseDown = [] { SetFocus(Values.Command1); };
  Values.Command1.Caption = "Clo&se";
  Values.Command1.IsDefault = true;
  Values.Command1.IsCancel = true;
  Values.Command1.Click = Command1_Click;
  Values.Command2.Caption = "&Plot";
  Values.Command2.Click = [] { PlotValues(Values.Grid1); };
  Values.Command3.Caption = "&Copy";
  Values.Command3.Click = Command3_Click;
  Values.frmValues.Layout =
      ColumnOf({ItemOf(Values.Grid1), RowOf({StretchOf(), ItemOf(Values.Command2), StretchOf(), ItemOf(Values.Command3),
                                             StretchOf(), ItemOf(Values.Command1), StretchOf()})});
}

}  // namespace zelvanor
