#include "program.h"

#include <utility>

#include "atomsets/AtomSets.h"
#include "atomsets/frmEquiv.h"
#include "atomsets/frmSelect.h"
#include "atomsets/frmSelect2.h"
#include "backend/Compute.h"
#include "backend/ErrorBars.h"
#include "backend/LevelReferences.h"
#include "backend/LogCommands.h"
#include "backend/PeakMap.h"
#include "basic/NumberText.h"
#include "files/FileCommands.h"
#include "files/ZMatrixImport.h"
#include "files/frmRecords.h"
#include "files/frmSmiles.h"
#include "fit/FitCommands.h"
#include "fit/frmFit.h"
#include "history/History.h"
#include "history/Recovery.h"
#include "host/GetCommand.h"
#include "measured/Integrals.h"
#include "measured/MeasuredCommands.h"
#include "measured/MeasuredDrawing.h"
#include "measured/MeasuredTrace.h"
#include "measured/MeasuredView.h"
#include "measured/frmExport.h"
#include "measured/frmProcess.h"
#include "molecule/AtomSelection.h"
#include "molecule/MoleculeView.h"
#include "molecule/MouseDrag.h"
#include "molecule/TakeSystem.h"
#include "molecule/frmRender.h"
#include "onestep/Paste.h"
#include "onestep/PredictSpectrum.h"
#include "platform/Paths.h"
#include "platform/RenderScene.h"
#include "platform/Variables.h"
#include "report/AssignedShifts.h"
#include "report/ReadNmreData.h"
#include "report/ReportCommands.h"
#include "settings/ColorSets.h"
#include "settings/Settings.h"
#include "settings/frmPreference.h"
#include "setup/ReferenceShieldings.h"
#include "setup/frmBackend.h"
#include "setup/frmParamOptions.h"
#include "setup/frmRefer.h"
#include "setup/frmReplace.h"
#include "setup/frmSCf.h"
#include "setup/frmSpectOptions.h"
#include "shell/Frame.h"
#include "shell/HelpTopics.h"
#include "shell/ShellVariables.h"
#include "shell/StepNames.h"
#include "shell/frmAbout.h"
#include "spectrum/SpectrumDrawing.h"
#include "spectrum/SpectrumInteraction.h"
#include "spectrum/SpectrumScale.h"
#include "spectrum/SpectrumView.h"
#include "spectrum/frmValues.h"
#include "tables/BarPlots.h"
#include "tables/ClipboardText.h"
#include "tables/TableEditing.h"
#include "tables/TableViews.h"
#include "tables/frmGraph.h"
#include "typing/AtomTyping.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"
#include "workspace/WorkspaceVariables.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* HostWord = "MORVANTIS";

Flag StartedAlone = True;

// Which handler a menu item runs. Items without a row show nothing when they are used. A value that is being typed into
// a table is stored first, but for a mere look at something else.
enum class TableEdit { Ends, StaysOpen };

struct MenuHandler {
  MenuItem MainForm::*Item;
  void (*Click)();
  TableEdit Edit = TableEdit::Ends;
};

constexpr MenuHandler MenuHandlers[] = {
    {&MainForm::mnuFileNew, mnuFileNew_Click},
    {&MainForm::mnuFileOpen, mnuFileOpen_Click},
    {&MainForm::mnuFileSave, mnuFileSave_Click},
    {&MainForm::mnuFileSaveAs, mnuFileSaveAs_Click},
    {&MainForm::mnuFileGet, mnuFileGet_Click},
    {&MainForm::mnuPreferences, mnuPreferences_Click, TableEdit::StaysOpen},
    {&MainForm::mnuFileExit, mnuFileExit_Click},
    {&MainForm::mnuFileOpenMeasured, mnuFileOpenMeasured_Click},
    {&MainForm::mnuCopy, mnuCopy_Click},
    {&MainForm::mnuReplace, mnuReplace_Click},
    {&MainForm::mnuStartLog, mnuStartLog_Click, TableEdit::StaysOpen},
    {&MainForm::mnuStopLog, mnuStopLog_Click, TableEdit::StaysOpen},
    {&MainForm::mnuEditCalculateTypes, mnuEditCalculateTypes_Click},
    {&MainForm::mnuUndo, mnuUndo_Click},
    {&MainForm::mnuRedo, mnuRedo_Click},
    {&MainForm::mnuPaste, mnuPaste_Click},
    {&MainForm::mnuViewMolecule, mnuViewMolecule_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewShielding, mnuViewShielding_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewCoupling, mnuViewCoupling_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewSpectra, mnuViewSpectra_Click, TableEdit::StaysOpen},
    {&MainForm::mnuLines, mnuLines_Click, TableEdit::StaysOpen},
    {&MainForm::mnuEnvelop, mnuEnvelop_Click, TableEdit::StaysOpen},
    {&MainForm::mnuLinesAndEnvelop, mnuLinesAndEnvelop_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewValues, mnuViewValues_Click},
    {&MainForm::mnuView2DBar, mnuView2DBar_Click},
    {&MainForm::mnuView3DBar, mnuView3DBar_Click},
    {&MainForm::mnuMultipleLineWidths, mnuMultipleLineWidths_Click, TableEdit::StaysOpen},
    {&MainForm::mnuLorentzian, mnuLorentzian_Click, TableEdit::StaysOpen},
    {&MainForm::mnuGaussian, mnuGaussian_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewRender, mnuViewRender_Click, TableEdit::StaysOpen},
    {&MainForm::mnuFileExport, mnuFileExport_Click},
    {&MainForm::mnuMeasuredOverlay, mnuMeasuredOverlay_Click, TableEdit::StaysOpen},
    {&MainForm::mnuMeasuredStack, mnuMeasuredStack_Click, TableEdit::StaysOpen},
    {&MainForm::mnuMeasuredMirror, mnuMeasuredMirror_Click, TableEdit::StaysOpen},
    {&MainForm::mnuMeasuredEqualArea, mnuMeasuredEqualArea_Click, TableEdit::StaysOpen},
    {&MainForm::mnuMeasuredIntegrals, mnuMeasuredIntegrals_Click, TableEdit::StaysOpen},
    {&MainForm::mnuMeasuredProcess, mnuMeasuredProcess_Click},
    {&MainForm::mnuMeasuredRemove, mnuMeasuredRemove_Click},
    {&MainForm::mnuViewLabels, mnuViewLabels_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewTree, mnuViewTree_Click, TableEdit::StaysOpen},
    {&MainForm::mnuViewPane, mnuViewPane_Click, TableEdit::StaysOpen},
    {&MainForm::mnuSetupNMRParam, mnuSetupNMRParam_Click},
    {&MainForm::mnuSetupNMRSpect, mnuSetupNMRSpect_Click},
    {&MainForm::mnuSetupReferenceShielding, mnuSetupReferenceShielding_Click},
    {&MainForm::mnuSetupBackend, mnuSetupBackend_Click},
    {&MainForm::mnuComputeNMR, mnuComputeNMR_Click},
    {&MainForm::mnuComputeSpectra, mnuComputeSpectra_Click},
    {&MainForm::mnuComputeAll, mnuComputeAll_Click},
    {&MainForm::mnuFileNewSmiles, mnuFileNewSmiles_Click},
    {&MainForm::mnuFileReport, mnuFileReport_Click},
    {&MainForm::mnuEditPublication, mnuEditPublication_Click},
    {&MainForm::mnuPredict1H, [] { PredictSpectrum(Nuclei[0]); }},
    {&MainForm::mnuPredict13C, [] { PredictSpectrum(Nuclei[1]); }},
    {&MainForm::mnuPredict15N, [] { PredictSpectrum(Nuclei[2]); }},
    {&MainForm::mnuPredict17O, [] { PredictSpectrum(Nuclei[3]); }},
    {&MainForm::mnuPredict19F, [] { PredictSpectrum(Nuclei[4]); }},
    {&MainForm::mnuPredict31P, [] { PredictSpectrum(Nuclei[5]); }},
    {&MainForm::mnuComputeFit, mnuComputeFit_Click},
    {&MainForm::mnuHelpContents, mnuHelpContents_Click, TableEdit::StaysOpen},
    {&MainForm::mnuHelpUsing, mnuHelpUsing_Click, TableEdit::StaysOpen},
    {&MainForm::mnuAbout, mnuAbout_Click, TableEdit::StaysOpen},
};

void Form_QueryUnload(Flag& Cancel) {
  if (QuerySave() != False) Cancel = True;
}

void Form_Unload() {
  WriteSettings();
  DropKeptWork();
  PrepareTypeRules(TypingTime::Shutdown);
  for (Form* Window : AllForms()) {
    if (Window != &Main.frmNMR) HideForm(*Window);
  }
  EndProgram();
}

void ShieldTable_Record(const Event& Work) {
  RunRecorded(TableEditing.EditView == CouplingView ? "typing a coupling" : "typing a shielding", Work);
}

void RecordTableEdit() {
  if (IsSet(TableEditing.EditActive)) ShieldTable_Record(EndTableEdit);
}

void ConnectMenu() {
  for (const MenuHandler& Row : MenuHandlers) {
    MenuItem& Item = Main.*Row.Item;
    const Text Name = StepNameOf(Item);
    Item.Click = [Name, &Row] {
      // What has been typed counts before the command, as a step of its own.
      if (Row.Edit == TableEdit::Ends) RecordTableEdit();
      Name.empty() ? Row.Click() : RunRecorded(Name, Row.Click);
    };
  }
}

void ConnectTable() {
  Main.ShieldTable.AccessibleName = "Table of results";
  Main.ShieldTable.KeyPress = [](int& KeyAscii) {
    // Only a key behind a number that is being typed stores it.
    if (!IsSet(TableEditing.EditActive)) return ShieldTable_KeyPress(KeyAscii);
    ShieldTable_Record([&KeyAscii] { ShieldTable_KeyPress(KeyAscii); });
  };
  Main.ShieldTable.RowColChange = [] {
    if (IsSet(TableEditing.EditActive)) ShieldTable_Record(ShieldTable_RowColChange);
  };
  Main.ShieldTable.SelChange = ShieldTable_SelChange;
}

// Undo and redo have put another document in place.
void ShowRestored(bool NewPeaks) {
  TableEditing.EditFirstKey = True;
  TableEditing.EditActive = False;
  IgnoreFailure(Rooms.UpdateAtomLabels);
  if (NewPeaks && IsSet(W.SpectraAvailable)) TakeOpenedSpectrum();
}

void ConnectMainForm() {
  ConnectMenu();
  ConnectTable();
  for (int Index = 0; Index < NumToolButtons; ++Index) {
    Main.picToolbar[Index].Click = [Index] { picToolbar_Click(Index); };
    Main.picToolbar[Index].MouseDown = [Index] { picToolbar_MouseDown(Index); };
    Main.picToolbar[Index].MouseUp = [Index] { picToolbar_MouseUp(Index); };
  }
  Main.frmNMR.QueryUnload = Form_QueryUnload;
  Main.frmNMR.Unload = Form_Unload;
  Main.frmNMR.Resize = Form_Resize;
  Main.frmNMR.KeyDown = Form_KeyDown;
  Main.HScroll1.Change = HScroll1_Change;
  Main.HScroll2.Change = [] { RunRecorded("changing the line width", HScroll2_Change, true); };
  Main.Spectrum1.MouseDown = Spectrum1_MouseDown;
  Main.Spectrum1.MouseMove = Spectrum1_MouseMove;
  Main.Spectrum1.MouseUp = [](int Button, int Shift, Single X, Single Y) {
    RunRecorded("integrating", [&] { Spectrum1_MouseUp(Button, Shift, X, Y); });
  };
  Main.Spectrum1.MouseWheel = Spectrum1_MouseWheel;
  Main.MolRender1.AccessibleName = "Molecule";
  Main.MolRender1.MouseDown = MolRender1_MouseDown;
  Main.MolRender1.MouseMove = [](int Button, int Shift, Single X, Single Y) {
    MolRender1_MouseMove(Button, Shift, X, Y);
    // Beside the spectrum the atom that is pointed at marks its lines.
    if (Button == 0 && PaneWidth() > 0) {
      MarkLinesOfAtom(PickAtom(Main.MolRender1, Double{X} / TwipsPerPixelX, Double{Y} / TwipsPerPixelY));
    }
  };
  Main.MolRender1.MouseUp = MolRender1_MouseUp;
  Main.MolRender1.MouseWheel = MolRender1_MouseWheel;
  Main.MolRender1.AtomClick = [](int Button, int Shift, int Atom) {
    if (PaneWidth() > 0) MarkLinesOfAtom(Atom);
    MolRender1_AtomClick(Button, Shift, Atom);
  };
  Main.MolRender1.NoAtomClick = MolRender1_NoAtomClick;
  StatusSink = [](TextView Value) { SetStatus(Main.StatusBar, Value); };
}

void ConnectPreferences() {
  Preferences.GetGraphClr = GetGraphClr;
  Preferences.GetSelectionClr = GetSelectionClr;
  Preferences.GetEnvelop = GetEnvelop;
  Preferences.SetGraphClr = SetGraphClr;
  Preferences.SetSelectionClr = SetSelectionClr;
  Preferences.SetEnvelop = SetEnvelop;
  Preferences.SetMonochrome = SetMonochrome;
  Preferences.SetSpectrumBackground = [](Colour Value) { SetBackColor(Main.Spectrum1, Value); };
  Preferences.GetMoleculeBackground = [] { return Main.MolRender1.BackColor; };
  Preferences.GetLabelColor = [] { return Main.MolRender1.LabelColor; };
  Preferences.TakeMoleculePreferences = TakeMoleculePreferences;
  Preferences.RefreshView = RefreshView;
}

void OpenZMatrix() {
  ConvertZMatrix(W.ZMatrixPath);
  if (IsSet(BuildAtomTableFromTree())) CalculateAtomTypes();
}

void ConnectRooms() {
  Rooms.ShowShieldingTable = ShowShieldingTable;
  Rooms.ShowCouplingTable = ShowCouplingTable;
  Rooms.ShowMoleculeView = ShowMoleculeView;
  Rooms.EndTableEdit = RecordTableEdit;
  Rooms.TurnMolecule = TurnMolecule;
  Rooms.FitMolecule = FitMolecule;
  Rooms.OpenZMatrix = OpenZMatrix;
  OpenAssignedSignals = OpenNmreData;
  Rooms.UpdateAtomLabels = [] {
    TakeSystem();
    UpdateAtomLabels(Main.MolRender1);
  };
  Rooms.ShowRestored = ShowRestored;
  HistoryChanged = UpdateUndoCommands;
  Rooms.ShowSpectrumView = [] {
    IgnoreFailure(TakeMeasuredIntoView);
    // The pane beside it comes and goes without the window's changing its size.
    static int LastPane = 0;
    if (std::exchange(LastPane, PaneWidth()) != PaneWidth()) {
      PlaceSpectrum();
      IgnoreFailure(FollowSurface);
    }
    ShowSpectrumView();
    if (PaneWidth() == 0) return;
    IgnoreFailure(TakeSystem);
    IgnoreFailure(PlaceMoleculeView);
    IgnoreFailure([] { UpdateAtomLabels(Main.MolRender1); });
  };
  Rooms.ForgetFrequencyRange = [] { SpectrumView.FrequencyRange = -1.0; };
  Rooms.TakeOpenedSpectrum = [] {
    // The molecule view knows the system even where the document comes up in the spectrum view.
    IgnoreFailure(TakeSystem);
    TakeOpenedSpectrum();
  };
  Rooms.SpectrumKey = PressSpectrumViewKey;
  Additions.BeforePaint = ShareSurface;
  Additions.AfterPaint = [](DrawingContext& Context) {
    DrawAdditions(Context);
    IgnoreFailure([&] { DrawFitDifference(Context); });
  };
  Additions.PeakPicked = ShowAtomsOfPeak;
  Additions.RangeChosen = AddIntegral;
  Additions.WidenWhole = WidenToMeasured;
  Rooms.LinesCommand = mnuLines_Click;
  Rooms.EnvelopCommand = mnuEnvelop_Click;
  Rooms.LinesAndEnvelopCommand = mnuLinesAndEnvelop_Click;
}

// The host may talk to the program that it has started.
void Form_LinkOpen(Flag& Cancel) { Cancel = False; }

void ReadCommandLine(const Text& CommandLine) {
  StartedAlone = ToFlag(CommandLine != HostWord);
  Main.LinkMode = IsSet(StartedAlone) ? 0 : 1;
  if (Main.LinkMode == 1) IgnoreFailure([] { Platform.Host.Accept(Form_LinkOpen); });
  SetEnabled(Main.mnuFile, StartedAlone);
}

void RefuseWhereWrong() {
  if (Platform.OtherInstanceRuns()) {
    ShowError("Zelvanor is already running.");
    EndProgram();
  }
  // Every text file of the program has "." in its numbers; under other settings they could not go to other programs.
  Text Sample = GeneralForm(12.3);
  Sample.replace(Sample.find('.'), 1, Platform.DecimalSeparator());
  if (Sample != "12.3") {
    ShowError(
        "Sorry, Zelvanor will not run with the current Windows number format.  Please change the International "
        "Settings "
        "using the Windows Control Panel and use \".\" for the decimal separator.");
    EndProgram();
  }
}

void SetFixedState() {
  W.DocumentTitle.clear();
  UpdateTitle();
  Settings.MolSelectColor = Rgb(0, 255, 0);
  Settings.MolMonochrome = 0;
  Main.AtomLabelMode = 0;
  SetVisible(Main.StatusBar, ToFlag(Main.frmNMR.Height > Main.ToolbarHeight));
  W.ViewMode = MoleculeView;
  W.MoleculeLoaded = False;
  UpdateCommands(MoleculeView);
  SetVisible(Main.HScroll1, False);
  SetVisible(Main.HScroll2, False);
  SetVisible(Main.ShieldTable, False);
  LayOutWindow();
  InitSpectrumView();
  if (Settings.FirstSight) StartAtFirstSight();
  InitMeasuredView();
  SetChecked(Main.mnuLorentzian, True);
  SetChecked(Main.mnuGaussian, False);
  SetChecked(Main.mnuMultipleLineWidths, False);
  SetEnabled(Main.mnuReplace, False);
}

void SetUpTables() {
  InitRadiusSets();
  Settings.SelectionColor = Rgb(0, 255, 0);
  Main.NumSelectedAtoms = 0;
  Main.SelectedAtom.ReDim(0);
  Main.SelectedAtomColor.ReDim(0);
  InitColorSets();
  InitReferenceElements();
  W.NumReferenceElements = NumReferenceEntries - 1;
  Main.MouseMode = RotateMode;
  for (int Index = 0; Index < NumToolButtons; ++Index) {
    SetEnabled(Main.picToolbar[Index], ToFlag(Index == ToolOpen || Index == ToolGet));
  }
}

void TakeSettings() {
  if (const Text Trouble = Platform.PrepareUserFiles(); !Trouble.empty()) ShowWarning(Trouble);
  ReadSettings();
  SetGraphClr(Settings.SpectrumLineColor);
  SetEnvelop(Settings.SpectrumEnvelopColor);
  SetSelectionClr(Settings.SpectrumSelectionColor);
  Main.HelpFile = Settings.NMRExePath + PathSeparator + "nmr.hlp";
  Settings.PrefGraphColor = GetGraphClr();
  Settings.PrefSelectionColor = GetSelectionClr();
  Settings.PrefEnvelopColor = GetEnvelop();
  InitMoleculeView();
}

}  // namespace

void BuildProgram() {
  BuildMainForm();
  BuildAboutForm();
  BuildPreferenceForm();
  BuildRenderForm();
  BuildAtomSetForm();
  BuildElementChoiceForm();
  BuildEquivalentForm();
  BuildParamOptionsForm();
  BuildSCFForm();
  BuildSpectOptionsForm();
  BuildReferenceForm();
  BuildBackendForm();
  BuildValuesForm();
  BuildGraphForm();
  BuildReplaceForm();
  BuildIntegralForm();
  BuildProcessForm();
  BuildExportForm();
  BuildFitForm();
  BuildRecordForm();
  BuildSmilesForm();
  GiveHelpContexts();
  ConnectMainForm();
  ConnectRooms();
  ConnectPreferences();
  AddWorkspaceVariables();
  AddSettingsVariables();
  AddShellVariables();
  AddSpectrumVariables();
  AddMoleculeVariables();
  AddRenderFormVariables();
  AddPreferenceVariables();
  AddAtomSetVariables();
  AddTableVariables();
  AddZMatrixVariables();
  AddTypingVariables();
  AddMeasuredVariables();
  AddFitVariables();
  AddMeasuredViewVariables();
  AddPeakMapSection();
  AddErrorBarSection();
  AddLevelReferencesSection();
  AddMeasuredSection();
  AddAssignedShifts();
  AddVariable("StartedAlone", StartedAlone);
}

void Form_Load(const Text& CommandLine) {
  ReadCommandLine(CommandLine);
  RefuseWhereWrong();
  SetFixedState();
  SetUpTables();
  TakeSettings();
  PrepareTypeRules(TypingTime::StartUp);
  W.ParamDescription = "Description of NMR shielding and coupling constants";
  W.SpectDescription = "Description of NMR Spectrum";
  W.DocumentDirty = False;
  SetVisible(Main.frmNMR, True);
  mnuFileGet_Click();
}

void Form_Resize() {
  LayOutWindow();
  IgnoreFailure(PlaceMoleculeView);
  IgnoreFailure(ResizeSpectrum);
  // The layout leaves the table without a height until its view is drawn again.
  if (IsSet(Main.ShieldTable.Visible)) PlaceTable();
}

}  // namespace zelvanor
