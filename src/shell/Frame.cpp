#include "shell/Frame.h"

#include <algorithm>
#include <cstdint>
#include <exception>

#include "basic/Numbers.h"
#include "shell/HelpTopics.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

FrameRooms Rooms;

namespace {

WorkspaceState& W = Workspace;

// What the enable logic goes by.
struct Available {
  bool Molecule;
  bool Shielding;
  bool Coupling;
  bool Spectra;
  bool Measured;
  bool Any() const { return Molecule || Shielding || Coupling || Spectra || Measured; }
};

Available FindAvailable() {
  return {IsSet(W.MoleculeLoaded), IsSet(W.ShieldingAvailable), IsSet(W.CouplingAvailable), IsSet(W.SpectraAvailable),
          W.MeasuredCount > 0};
}

void Enable(Control& Target, bool Enabled) { SetEnabled(Target, ToFlag(Enabled)); }
void Show(Control& Target, bool Visible) { SetVisible(Target, ToFlag(Visible)); }

void UpdateFileCommands(const Available& Has) {
  Enable(Main.mnuFileNew, Has.Any());
  Enable(Main.picToolbar[ToolNew], Has.Any());
  const bool Savable = Has.Any() || IsSet(W.DocumentDirty);
  Enable(Main.mnuFileSave, Savable);
  Enable(Main.mnuFileSaveAs, Savable);
  Enable(Main.picToolbar[ToolSave], Savable);
}

bool ShownDataExist(const Available& Has, int View) {
  switch (View) {
    case MoleculeView:
      return Has.Molecule;
    case ShieldingView:
      return Has.Shielding;
    case CouplingView:
      return Has.Coupling;
    default:
      return Has.Spectra || Has.Measured;
  }
}

void UpdateViewControls(const Available& Has, int View) {
  const bool Table = View == ShieldingView || View == CouplingView;
  const bool Spectrum = View == SpectrumViewMode;
  Show(Main.ShieldTable, Table);
  Show(Main.mnuViewGraph, Table);
  Enable(Main.mnuViewGraph, Table);
  Show(Main.mnuViewFill4, Has.Any());
  Show(Main.Spectrum1, Spectrum);
  Show(Main.HScroll1, Spectrum);
  Show(Main.HScroll2, Spectrum);
  Show(Main.mnuViewValues, View == ShieldingView || Spectrum);
  if (!Spectrum) Show(Main.mnuViewWidths, false);
  SetChecked(Main.mnuViewMolecule, ToFlag(View == MoleculeView));
  SetChecked(Main.mnuViewShielding, ToFlag(View == ShieldingView));
  SetChecked(Main.mnuViewCoupling, ToFlag(View == CouplingView));
}

void UpdateMouseTools(const Available& Has, int View) {
  const bool Usable = View == MoleculeView && Has.Molecule;
  for (int Tool : {ToolRotate, ToolSelect, ToolTranslate}) Enable(Main.picToolbar[Tool], Usable);
  if (Usable && Main.MouseMode == RotateMode) SetPressed(Main.picToolbar[ToolRotate], True);
}

}  // namespace

void IgnoreFailure(const std::function<void()>& Step) {
  if (!Step) return;
  try {
    Step();
  } catch (const Failure&) {
    // What the step has done so far stays.
  }
}

void UpdateTitle() {
  SetCaption(Main.frmNMR, Join(ProgramTitle, " - ", W.DocumentTitle.empty() ? Text("(untitled)") : W.DocumentTitle));
}

void UpdateCommands(int View) {
  const Available Has = FindAvailable();
  UpdateFileCommands(Has);
  Enable(Main.mnuCopy, ShownDataExist(Has, View));
  UpdateViewControls(Has, View);

  for (Control* Item :
       {static_cast<Control*>(&Main.mnuEditCalculateTypes), static_cast<Control*>(&Main.mnuViewMolecule),
        static_cast<Control*>(&Main.picToolbar[ToolMolecule])}) {
    Enable(*Item, Has.Molecule);
  }
  // A results-only document has fewer atoms than NMR atoms: there is nothing to run stage 1 on.
  const bool Computable = Has.Molecule && W.NumAtoms >= W.NumNMRAtoms;
  for (MenuItem* Item : {&Main.mnuSetupNMRParam, &Main.mnuComputeNMR, &Main.mnuComputeAll}) Enable(*Item, Computable);
  Enable(Main.mnuPredict, Has.Molecule);
  Enable(Main.mnuViewShielding, Has.Shielding);
  Enable(Main.mnuComputeSpectra, Has.Shielding);
  Enable(Main.picToolbar[ToolShielding], Has.Shielding);
  Enable(Main.mnuViewCoupling, Has.Coupling);
  Enable(Main.picToolbar[ToolCoupling], Has.Coupling);
  Enable(Main.mnuViewSpectra, Has.Spectra || Has.Measured);
  Enable(Main.picToolbar[ToolSpectrum], Has.Spectra || Has.Measured);
  Enable(Main.mnuViewMeasured, Has.Measured);
  Enable(Main.mnuComputeFit, Has.Measured && Has.Shielding && Has.Coupling);
  const bool Spectrum = View == SpectrumViewMode && (Has.Spectra || Has.Measured);
  Enable(Main.mnuViewLabels, Spectrum && Has.Spectra);
  Enable(Main.mnuViewTree, Spectrum && Has.Spectra);
  Enable(Main.mnuViewPane, Spectrum && Has.Molecule);
  Enable(Main.mnuFileReport, Has.Shielding);
  Enable(Main.mnuEditPublication, Has.Shielding);
  Enable(Main.mnuFileExport, (View == MoleculeView && Has.Molecule) || Spectrum);
  UpdateMouseTools(Has, View);
  SetPressed(Main.picToolbar[ToolShielding], ToFlag(View == ShieldingView));
  SetPressed(Main.picToolbar[ToolCoupling], ToFlag(View == CouplingView));
  SetPressed(Main.picToolbar[ToolSpectrum], ToFlag(View == SpectrumViewMode));
}

void RefreshView() {
  IgnoreFailure([] { UpdateCommands(W.ViewMode); });
  IgnoreFailure(Rooms.ForgetFrequencyRange);
  switch (W.ViewMode) {
    case MoleculeView:
      return IgnoreFailure(Rooms.ShowMoleculeView);
    case ShieldingView:
      return IgnoreFailure(Rooms.ShowShieldingTable);
    case CouplingView:
      return IgnoreFailure(Rooms.ShowCouplingTable);
    case SpectrumViewMode:
      return IgnoreFailure(Rooms.ShowSpectrumView);
    default:
      return;
  }
}

namespace {
void ShowReady(Flag Ready) {
  for (MenuItem* Menu : {&Main.mnuFile, &Main.mnuEdit, &Main.mnuView, &Main.mnuSetup, &Main.mnuCompute}) {
    SetEnabled(*Menu, Ready);
  }
  Platform.SetPointer(IsSet(Ready) ? MousePointer::Default : MousePointer::Hourglass);
}
}  // namespace

void SetBusy(Flag Ready) {
  ShowReady(Ready);
  Platform.DoEvents();
}

BusyState::BusyState() : Exceptions(std::uncaught_exceptions()) {
  Main.IsBusy = True;
  SetBusy(False);
}

BusyState::~BusyState() noexcept(false) {
  Main.IsBusy = False;
  ShowReady(True);
  if (std::uncaught_exceptions() == Exceptions) Platform.DoEvents();
}

void MenuHelp(TextView Caption) {
  const auto Rows = MenuRows();
  const auto Row =
      std::find_if(Rows.begin(), Rows.end(), [&](const MenuRow& R) { return (Main.*R.Item).Caption == Caption; });
  if (Row != Rows.end() && *Row->Help != '\0') ShowStatus(Row->Help);
}

void SubClass1_MenuSelect(int Flags, TextView ItemText) {
  constexpr int WithoutHelp = 0x2004;
  constexpr std::size_t LongestText = 63;
  if ((Flags & WithoutHelp) != 0) return;
  ItemText = ItemText.substr(0, LongestText);
  MenuHelp(ItemText.substr(0, ItemText.find('\t')));
}

void PlaceSpectrum() {
  const Form& Window = Main.frmNMR;
  const int Free =
      Window.Height - Main.StatusBar.Height - Main.ToolbarHeight - Main.HScroll1.Height - Main.HScroll2.Height;
  SetPlace(Main.Spectrum1, 0, Main.ToolbarHeight + Main.HScroll2.Height, Window.Width - PaneWidth(), std::max(Free, 1));
}

int PaneWidth() {
  constexpr int Hundred = 100;
  constexpr int LeastWindow = TwipsFromPixels(300);
  const int Width = Main.frmNMR.Width;
  const bool Shown = IsSet(Main.mnuViewPane.Checked) && IsSet(W.MoleculeLoaded) && W.ViewMode == SpectrumViewMode;
  if (!Shown || Width < LeastWindow) return 0;
  return TwipsFromPixels(static_cast<int>(std::int64_t{Width} * Main.PanePercent / Hundred / TwipsPerPixelX));
}

void ShowPane(Flag Shown) {
  SetChecked(Main.mnuViewPane, Shown);
  RefreshView();
}

void SetPanePercent(int Percent) {
  constexpr int Least = 10;
  constexpr int Most = 80;
  Main.PanePercent = std::clamp(Percent, Least, Most);
  RefreshView();
}

void LayOutWindow() {
  const Form& Window = Main.frmNMR;
  const int Top = Main.ToolbarHeight;
  Show(Main.StatusBar, Window.Height >= Top);
  SetPlace(Main.StatusBar, 0, Window.Height - Main.StatusBar.Height, Window.Width, Main.StatusBar.Height);
  SetPlace(Main.ShieldTable, 0, Top, Window.Width, 0);
  SetPlace(Main.HScroll2, 0, Top, Window.Width, Main.HScroll2.Height);
  PlaceSpectrum();
  const int Free = Window.Height - Main.StatusBar.Height - Top - Main.HScroll1.Height - Main.HScroll2.Height;
  SetPlace(Main.HScroll1, 0, Free > 0 ? Top + Main.HScroll2.Height + Free : Top, Window.Width, Main.HScroll1.Height);
}

void EnterSpectrumView() {
  W.ViewMode = SpectrumViewMode;
  RefreshView();
  SetCaption(Main.mnuViewValues, SpectralValuesCaption);
}

void mnuViewMolecule_Click() {
  ShowStatus(Main.ToolHelp[ToolMolecule]);
  W.ViewMode = MoleculeView;
  RefreshView();
}

void mnuViewShielding_Click() {
  ShowStatus(Main.ToolHelp[ToolShielding]);
  W.ViewMode = ShieldingView;
  RefreshView();
  SetCaption(Main.mnuViewValues, ShieldingTensorCaption);
}

void mnuViewCoupling_Click() {
  ShowStatus(Main.ToolHelp[ToolCoupling]);
  W.ViewMode = CouplingView;
  RefreshView();
}

void mnuViewSpectra_Click() { ShowStatus(Main.ToolHelp[ToolSpectrum]); }

void mnuHelpContents_Click() { Platform.ShowHelp(Main.HelpFile, HelpCommand::Contents, ContentsHelp); }
void mnuHelpUsing_Click() { Platform.ShowHelp(Main.HelpFile, HelpCommand::HelpOnHelp, UsingHelp); }
void mnuFileExit_Click() { UnloadForm(Main.frmNMR); }

}  // namespace zelvanor
