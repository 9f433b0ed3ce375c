#pragma once

#include <span>

#include "basic/Array.h"
#include "platform/Form.h"
#include "platform/Grid.h"
#include "platform/Picture.h"
#include "platform/Render.h"

namespace zelvanor {

inline constexpr int NumToolButtons = 11;

// Toolbar buttons by their index.
enum ToolIndex {
  ToolNew,
  ToolOpen,
  ToolSave,
  ToolGet,
  ToolMolecule,
  ToolShielding,
  ToolCoupling,
  ToolSpectrum,
  ToolRotate,
  ToolSelect,
  ToolTranslate,
};

// What the mouse does in the molecule view.
enum MouseModes { SelectMode = 1, RotateMode = 2, TranslateMode = 3 };

// The main window: the frame of every command.
struct MainForm {
  Form frmNMR{MainFormName};

  MenuItem mnuFile{&frmNMR, "mnuFile"};
  MenuItem mnuFileNew{&frmNMR, "mnuFileNew"};
  MenuItem mnuFileOpen{&frmNMR, "mnuFileOpen"};
  MenuItem mnuFileSave{&frmNMR, "mnuFileSave"};
  MenuItem mnuFileSaveAs{&frmNMR, "mnuFileSaveAs"};
  MenuItem mnuFileFill0{&frmNMR, "mnuFileFill0"};
  MenuItem mnuFileGet{&frmNMR, "mnuFileGet"};
  MenuItem mnuFileFill1{&frmNMR, "mnuFileFill1"};
  MenuItem mnuStartLog{&frmNMR, "mnuStartLog"};
  MenuItem mnuStopLog{&frmNMR, "mnuStopLog"};
  MenuItem mnuFileFile2{&frmNMR, "mnuFileFile2"};
  MenuItem mnuPreferences{&frmNMR, "mnuPreferences"};
  MenuItem mnuFileFill2{&frmNMR, "mnuFileFill2"};
  MenuItem mnuFileExit{&frmNMR, "mnuFileExit"};
  MenuItem mnuFileFill3{&frmNMR, "mnuFileFill3"};
  MenuItem mnuFileOpenMeasured{&frmNMR, "mnuFileOpenMeasured"};
  MenuItem mnuFileExport{&frmNMR, "mnuFileExport"};
  MenuItem mnuFileNewSmiles{&frmNMR, "mnuFileNewSmiles"};
  MenuItem mnuFileReport{&frmNMR, "mnuFileReport"};
  MenuItem mnuEdit{&frmNMR, "mnuEdit"};
  MenuItem mnuCopy{&frmNMR, "mnuCopy"};
  MenuItem mnuEditFill1{&frmNMR, "mnuEditFill1"};
  MenuItem mnuReplace{&frmNMR, "mnuReplace"};
  MenuItem mnuEditFill2{&frmNMR, "mnuEditFill2"};
  MenuItem mnuEditCalculateTypes{&frmNMR, "mnuEditCalculateTypes"};
  MenuItem mnuEditFill3{&frmNMR, "mnuEditFill3"};
  MenuItem mnuUndo{&frmNMR, "mnuUndo"};
  MenuItem mnuRedo{&frmNMR, "mnuRedo"};
  MenuItem mnuEditPublication{&frmNMR, "mnuEditPublication"};
  MenuItem mnuPaste{&frmNMR, "mnuPaste"};
  MenuItem mnuView{&frmNMR, "mnuView"};
  MenuItem mnuViewMolecule{&frmNMR, "mnuViewMolecule"};
  MenuItem mnuViewFill1{&frmNMR, "mnuViewFill1"};
  MenuItem mnuViewShielding{&frmNMR, "mnuViewShielding"};
  MenuItem mnuViewFill2{&frmNMR, "mnuViewFill2"};
  MenuItem mnuViewCoupling{&frmNMR, "mnuViewCoupling"};
  MenuItem mnuViewFill3{&frmNMR, "mnuViewFill3"};
  MenuItem mnuViewSpectra{&frmNMR, "mnuViewSpectra"};
  MenuItem mnuLines{&frmNMR, "mnuLines"};
  MenuItem mnuEnvelop{&frmNMR, "mnuEnvelop"};
  MenuItem mnuLinesAndEnvelop{&frmNMR, "mnuLinesAndEnvelop"};
  MenuItem mnuViewFill4{&frmNMR, "mnuViewFill4"};
  MenuItem mnuViewValues{&frmNMR, "mnuViewValues"};
  MenuItem mnuViewWidths{&frmNMR, "mnuViewWidths"};
  MenuItem mnuMultipleLineWidths{&frmNMR, "mnuMultipleLineWidths"};
  MenuItem LinwidthFill{&frmNMR, "LinwidthFill"};
  MenuItem mnuLorentzian{&frmNMR, "mnuLorentzian"};
  MenuItem mnuGaussian{&frmNMR, "mnuGaussian"};
  MenuItem mnuViewGraph{&frmNMR, "mnuViewGraph"};
  MenuItem mnuView2DBar{&frmNMR, "mnuView2DBar"};
  MenuItem mnuView3DBar{&frmNMR, "mnuView3DBar"};
  MenuItem mnuViewRender{&frmNMR, "mnuViewRender"};
  MenuItem mnuViewFill5{&frmNMR, "mnuViewFill5"};
  MenuItem mnuViewMeasured{&frmNMR, "mnuViewMeasured"};
  MenuItem mnuMeasuredOverlay{&frmNMR, "mnuMeasuredOverlay"};
  MenuItem mnuMeasuredStack{&frmNMR, "mnuMeasuredStack"};
  MenuItem mnuMeasuredMirror{&frmNMR, "mnuMeasuredMirror"};
  MenuItem mnuMeasuredFill1{&frmNMR, "mnuMeasuredFill1"};
  MenuItem mnuMeasuredEqualArea{&frmNMR, "mnuMeasuredEqualArea"};
  MenuItem mnuMeasuredIntegrals{&frmNMR, "mnuMeasuredIntegrals"};
  MenuItem mnuMeasuredProcess{&frmNMR, "mnuMeasuredProcess"};
  MenuItem mnuMeasuredFill2{&frmNMR, "mnuMeasuredFill2"};
  MenuItem mnuMeasuredRemove{&frmNMR, "mnuMeasuredRemove"};
  MenuItem mnuViewLabels{&frmNMR, "mnuViewLabels"};
  MenuItem mnuViewTree{&frmNMR, "mnuViewTree"};
  MenuItem mnuViewPane{&frmNMR, "mnuViewPane"};
  MenuItem mnuSetup{&frmNMR, "mnuSetup"};
  MenuItem mnuSetupNMRParam{&frmNMR, "mnuSetupNMRParam"};
  MenuItem mnuSetupNMRSpect{&frmNMR, "mnuSetupNMRSpect"};
  MenuItem mnuSetupReferenceShielding{&frmNMR, "mnuSetupReferenceShielding"};
  MenuItem mnuSetupBackend{&frmNMR, "mnuSetupBackend"};
  MenuItem mnuCompute{&frmNMR, "mnuCompute"};
  MenuItem mnuComputeNMR{&frmNMR, "mnuComputeNMR"};
  MenuItem mnuComputeSpectra{&frmNMR, "mnuComputeSpectra"};
  MenuItem mnuComputeFill{&frmNMR, "mnuComputeFill"};
  MenuItem mnuComputeAll{&frmNMR, "mnuComputeAll"};
  MenuItem mnuComputeFill1{&frmNMR, "mnuComputeFill1"};
  MenuItem mnuPredict{&frmNMR, "mnuPredict"};
  MenuItem mnuPredict1H{&frmNMR, "mnuPredict1H"};
  MenuItem mnuPredict13C{&frmNMR, "mnuPredict13C"};
  MenuItem mnuPredict15N{&frmNMR, "mnuPredict15N"};
  MenuItem mnuPredict17O{&frmNMR, "mnuPredict17O"};
  MenuItem mnuPredict19F{&frmNMR, "mnuPredict19F"};
  MenuItem mnuPredict31P{&frmNMR, "mnuPredict31P"};
  MenuItem mnuComputeFit{&frmNMR, "mnuComputeFit"};
  MenuItem mnuHelp{&frmNMR, "mnuHelp"};
  MenuItem mnuHelpContents{&frmNMR, "mnuHelpContents"};
  MenuItem mnuHelpUsing{&frmNMR, "mnuHelpUsing"};
  MenuItem mnuHelpFill{&frmNMR, "mnuHelpFill"};
  MenuItem mnuAbout{&frmNMR, "mnuAbout"};

  ToolButton picToolbar[NumToolButtons] = {
      {&frmNMR, "picToolbar", 0}, {&frmNMR, "picToolbar", 1}, {&frmNMR, "picToolbar", 2}, {&frmNMR, "picToolbar", 3},
      {&frmNMR, "picToolbar", 4}, {&frmNMR, "picToolbar", 5}, {&frmNMR, "picToolbar", 6}, {&frmNMR, "picToolbar", 7},
      {&frmNMR, "picToolbar", 8}, {&frmNMR, "picToolbar", 9}, {&frmNMR, "picToolbar", 10}};
  StatusLine StatusBar{&frmNMR, "StatusBar"};
  RenderControl MolRender1{&frmNMR, "MolRender1"};
  GridControl ShieldTable{&frmNMR, "ShieldTable"};
  ScrollBar HScroll2{&frmNMR, "HScroll2"};  // line width, above the spectrum
  PictureSurface Spectrum1{&frmNMR, "Spectrum1"};
  ScrollBar HScroll1{&frmNMR, "HScroll1"};  // panning, below the spectrum

  Integer PanePercent = 35;  // of the window's width, for the molecule beside the spectrum

  int ToolbarHeight = TwipsFromPixels(30);
  Text ToolHelp[NumToolButtons];
  Text HelpFile;
  Integer LinkMode;     // 1: the host may open a conversation on the window
  Flag IsBusy = False;  // a long command is under way
  Integer MouseMode = RotateMode;
  Integer AtomLabelMode;  // what the labels of the molecule view say, 0..5

  // The selection in the molecule view: 0-based atom indices in the order of picking, and the colours they had before.
  Integer NumSelectedAtoms;
  Array<Integer> SelectedAtom;
  Array<Long> SelectedAtomColor;
};

extern MainForm Main;

// One menu item: everything about it that does not change. Help is the status line text, empty for none.
struct MenuRow {
  MenuItem MainForm::*Item;
  MenuItem MainForm::*Parent;  // null for a top menu
  const char* Caption;
  const char* Shortcut;
  const char* Help;
  bool StartsDisabled;
};

std::span<const MenuRow> MenuRows();

// One toolbar button.
struct ToolRow {
  const char* Icon;
  const char* Help;
};

// Gives the menu items and toolbar buttons what the tables hold. Once, before the window is shown.
void BuildMainForm();

}  // namespace zelvanor
