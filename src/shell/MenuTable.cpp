#include <array>

#include "shell/MainForm.h"

namespace zelvanor {

namespace {

using M = MainForm;

// A top menu, a command below one, a separator.
constexpr MenuRow Top(MenuItem M::*Item, const char* Caption, const char* Help) {
  return {Item, nullptr, Caption, "", Help, false};
}
constexpr MenuRow Below(MenuItem M::*Parent, MenuItem M::*Item, const char* Caption, const char* Shortcut,
                        const char* Help) {
  return {Item, Parent, Caption, Shortcut, Help, false};
}
constexpr MenuRow Fill(MenuItem M::*Parent, MenuItem M::*Item) { return {Item, Parent, "-", "", "", false}; }
constexpr MenuRow Disabled(MenuRow Row) {
  Row.StartsDisabled = true;
  return Row;
}

constexpr std::array Rows = {
    Top(&M::mnuFile, "&File", "Access files and Morvantis."),
    Below(&M::mnuFile, &M::mnuFileNew, "&New", "Ctrl+N", "Clear the workspace."),
    Below(&M::mnuFile, &M::mnuFileOpen, "&Open...", "Ctrl+O", "Open a file."),
    Below(&M::mnuFile, &M::mnuFileSave, "&Save", "Ctrl+S", "Save the current system to its file."),
    Below(&M::mnuFile, &M::mnuFileSaveAs, "Save &As...", "Ctrl+A", "Save the current system to a new file."),
    Fill(&M::mnuFile, &M::mnuFileFill0),
    Below(&M::mnuFile, &M::mnuFileGet, "&Get Morvantis", "Ctrl+G", "Get Morvantis's current molecule."),
    Fill(&M::mnuFile, &M::mnuFileFill1),
    Below(&M::mnuFile, &M::mnuStartLog, "Start &Log...", "", "Start a log file."),
    Disabled(Below(&M::mnuFile, &M::mnuStopLog, "S&top Log", "", "Stop the log file.")),
    Fill(&M::mnuFile, &M::mnuFileFile2),
    Below(&M::mnuFile, &M::mnuPreferences, "Pre&ferences...", "Ctrl+F",
          "Set up the colors for displaying molecules and NMR spectra."),
    Fill(&M::mnuFile, &M::mnuFileFill2),
    Below(&M::mnuFile, &M::mnuFileExit, "E&xit", "", "Exit Zelvanor."),
    Fill(&M::mnuFile, &M::mnuFileFill3),
    Below(&M::mnuFile, &M::mnuFileOpenMeasured, "Open &Measured...", "Ctrl+M",
          "Open a measured spectrum beside the simulated one."),
    Below(&M::mnuFile, &M::mnuFileExport, "&Export...", "Ctrl+E",
          "Write what is shown as a picture, or its values for other programs."),
    Below(&M::mnuFile, &M::mnuFileNewSmiles, "New From SM&ILES...", "", "Make a molecule from its SMILES."),
    Disabled(Below(&M::mnuFile, &M::mnuFileReport, "Re&port...", "Ctrl+Shift+R",
                   "Write structure, spectrum and tables as a page to read or print.")),

    Top(&M::mnuEdit, "&Edit", "Copy data to the clipboard."),
    Below(&M::mnuEdit, &M::mnuCopy, "&Copy", "Ctrl+C", "Copy the current image into the Windows clipboard."),
    Fill(&M::mnuEdit, &M::mnuEditFill1),
    Below(&M::mnuEdit, &M::mnuReplace, "&Replace Selected Entry By...", "Ctrl+P", ""),
    Fill(&M::mnuEdit, &M::mnuEditFill2),
    Disabled(Below(&M::mnuEdit, &M::mnuEditCalculateTypes, "Recalculate &Atom Types", "",
                   "Calculate the atom types for the current molecular system.")),
    Fill(&M::mnuEdit, &M::mnuEditFill3),
    Disabled(Below(&M::mnuEdit, &M::mnuUndo, "&Undo", "Ctrl+Z", "Take back the last change of the document.")),
    Disabled(Below(&M::mnuEdit, &M::mnuRedo, "Re&do", "Ctrl+Shift+Z", "Make the change again that was taken back.")),
    Disabled(Below(&M::mnuEdit, &M::mnuEditPublication, "Copy Publication Te&xt", "Ctrl+Shift+C",
                   "Copy the signals as a paper lists them.")),
    Below(&M::mnuEdit, &M::mnuPaste, "&Paste Molecule", "Ctrl+V",
          "Take a SMILES, a mol block or a file that was copied."),

    Top(&M::mnuView, "&View", "Change the contents of the workspace."),
    Disabled(Below(&M::mnuView, &M::mnuViewMolecule, "&Molecule", "", "Display molecules.")),
    Fill(&M::mnuView, &M::mnuViewFill1),
    Disabled(Below(&M::mnuView, &M::mnuViewShielding, "&Shielding Constants", "", "Display shielding constant table.")),
    Fill(&M::mnuView, &M::mnuViewFill2),
    Disabled(Below(&M::mnuView, &M::mnuViewCoupling, "&Coupling Constants", "", "Display coupling constant table.")),
    Fill(&M::mnuView, &M::mnuViewFill3),
    Disabled(Below(&M::mnuView, &M::mnuViewSpectra, "S&pectrum", "", "Display the NMR spectrum.")),
    Below(&M::mnuViewSpectra, &M::mnuLines, "&Lines", "", "Show the peaks of the NMR spectrum."),
    Below(&M::mnuViewSpectra, &M::mnuEnvelop, "&Envelope", "", "Show the envelope of the NMR spectrum."),
    Below(&M::mnuViewSpectra, &M::mnuLinesAndEnvelop, "Lines &and Envelope", "",
          "Show the peaks and envelope of the NMR spectrum."),
    Fill(&M::mnuView, &M::mnuViewFill4),
    Below(&M::mnuView, &M::mnuViewValues, "&Values...", "",
          "View the values of the shielding tensors or NMR spectrum."),
    Below(&M::mnuView, &M::mnuViewWidths, "&Line Widths", "", "Change the line width of the NMR spectrum."),
    Below(&M::mnuViewWidths, &M::mnuMultipleLineWidths, "&Multiple Line Widths", "", "Display multiple line widths."),
    Fill(&M::mnuViewWidths, &M::LinwidthFill),
    Below(&M::mnuViewWidths, &M::mnuLorentzian, "&Lorentzian", "",
          "Display the NMR spectrum in the Lorentzian distribution."),
    Below(&M::mnuViewWidths, &M::mnuGaussian, "&Gaussian ", "",
          "Display the NMR spectrum in the Gaussian distribution."),
    Below(&M::mnuView, &M::mnuViewGraph, "&Graph", "", "Display the contents of the workspace graphically."),
    Below(&M::mnuViewGraph, &M::mnuView2DBar, "&2D Bar", "", "2D bar graph."),
    Below(&M::mnuViewGraph, &M::mnuView3DBar, "&3D Bar", "", "3D bar graph."),
    Below(&M::mnuView, &M::mnuViewRender, "&Rendering...", "", "Change the rendering for atoms and bonds."),
    Fill(&M::mnuView, &M::mnuViewFill5),
    Below(&M::mnuView, &M::mnuViewMeasured, "Meas&ured", "", "The measured spectrum beside the simulated one."),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredOverlay, "&Overlay", "", "Draw the measured spectrum over the other."),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredStack, "&Stack", "", "Draw the measured spectrum above the other."),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredMirror, "&Mirror", "",
          "Draw the measured spectrum below the other, upside down."),
    Fill(&M::mnuViewMeasured, &M::mnuMeasuredFill1),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredEqualArea, "&Equal Area", "",
          "Scale the measured spectrum to the area of the simulated one."),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredIntegrals, "&Integrals...", "",
          "Ranges of the measured spectrum and their integrals."),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredProcess, "&Process...", "",
          "Phase, baseline and reference of the measured spectrum."),
    Fill(&M::mnuViewMeasured, &M::mnuMeasuredFill2),
    Below(&M::mnuViewMeasured, &M::mnuMeasuredRemove, "&Remove", "", "Remove the measured spectrum."),
    Below(&M::mnuView, &M::mnuViewLabels, "Multiplet La&bels", "Ctrl+L",
          "Label the multiplets of the spectrum with atoms, shift and couplings."),
    Below(&M::mnuView, &M::mnuViewTree, "Splitting &Tree", "Ctrl+T", "Draw how the picked multiplet splits."),
    Below(&M::mnuView, &M::mnuViewPane, "M&olecule Beside", "Ctrl+B",
          "Show the molecule beside the spectrum: lines and atoms show what belongs together."),

    Top(&M::mnuSetup, "&Setup", ""),
    Below(&M::mnuSetup, &M::mnuSetupNMRParam, "Shielding && &Coupling...", "",
          "Setup options for computing NMR shielding and coupling constants."),
    Below(&M::mnuSetup, &M::mnuSetupNMRSpect, "&Spectrum...", "", "Setup options for computing NMR spectrum."),
    Below(&M::mnuSetup, &M::mnuSetupReferenceShielding, "&Reference Shielding...", "",
          "Specify the reference shielding constants."),
    Below(&M::mnuSetup, &M::mnuSetupBackend, "&Backend...", "", "Choose what computes shieldings and couplings."),

    Top(&M::mnuCompute, "&Compute", "Compute NMR properties."),
    Disabled(Below(&M::mnuCompute, &M::mnuComputeNMR, "I  - Shielding && &Coupling", "",
                   "Compute NMR shielding and coupling constants.")),
    Disabled(Below(&M::mnuCompute, &M::mnuComputeSpectra, "II - &Spectrum", "", "Compute NMR spectrum.")),
    Fill(&M::mnuCompute, &M::mnuComputeFill),
    Disabled(Below(&M::mnuCompute, &M::mnuComputeAll, "&Both: I Then II", "",
                   "Compute NMR shielding and coupling constants and NMR spectrum.")),
    Fill(&M::mnuCompute, &M::mnuComputeFill1),
    Below(&M::mnuCompute, &M::mnuPredict, "&Predict Spectrum", "", "From the molecule to its spectrum in one step."),
    Below(&M::mnuPredict, &M::mnuPredict1H, "&Protons (1H)", "", "Predict the 1H spectrum of the molecules."),
    Below(&M::mnuPredict, &M::mnuPredict13C, "&Carbons (13C)", "", "Predict the 13C spectrum of the molecules."),
    Below(&M::mnuPredict, &M::mnuPredict15N, "&Nitrogens (15N)", "", "Predict the 15N spectrum of the molecules."),
    Below(&M::mnuPredict, &M::mnuPredict17O, "&Oxygens (17O)", "", "Predict the 17O spectrum of the molecules."),
    Below(&M::mnuPredict, &M::mnuPredict19F, "&Fluorines (19F)", "", "Predict the 19F spectrum of the molecules."),
    Below(&M::mnuPredict, &M::mnuPredict31P, "P&hosphoruses (31P)", "", "Predict the 31P spectrum of the molecules."),
    Disabled(Below(&M::mnuCompute, &M::mnuComputeFit, "&Fit to Measured...", "",
                   "Fit shifts and couplings to the measured spectrum.")),

    Top(&M::mnuHelp, "&Help", "Show on-line help."),
    Below(&M::mnuHelp, &M::mnuHelpContents, "&Contents", "", "See the Table of Contents for the on-line help."),
    Below(&M::mnuHelp, &M::mnuHelpUsing, "&Using Help", "", "Learn how to get help."),
    Fill(&M::mnuHelp, &M::mnuHelpFill),
    Below(&M::mnuHelp, &M::mnuAbout, "&About Zelvanor ...", "", "See copyright and version information."),
};

constexpr std::array<ToolRow, NumToolButtons> Tools = {{
    {.Icon = "new", .Help = "Clear the workspace."},
    {.Icon = "open", .Help = "Open a file."},
    {.Icon = "save", .Help = "Save the current system into its file."},
    {.Icon = "get", .Help = "Get Morvantis's current molecule."},
    {.Icon = "molecule", .Help = "View the molecule."},
    {.Icon = "shielding", .Help = "View the shielding constants."},
    {.Icon = "coupling", .Help = "View the spin-coupling constants."},
    {.Icon = "spectrum", .Help = "View the NMR spectrum."},
    {.Icon = "rotate", .Help = "Use the pointer to rotate your view of the system."},
    {.Icon = "select", .Help = "Use the mouse to select atoms."},
    {.Icon = "translate", .Help = "Use the mouse to translate and magnify the molecular system."},
}};

}  // namespace

std::span<const MenuRow> MenuRows() { return Rows; }

MainForm Main;

void BuildMainForm() {
  for (const MenuRow& Row : Rows) {
    MenuItem& Item = Main.*Row.Item;
    Item.Parent = Row.Parent == nullptr ? nullptr : &(Main.*Row.Parent);
    Item.Caption = Row.Caption;
    Item.Shortcut = Row.Shortcut;
    Item.Separator = Item.Caption == "-";
    SetEnabled(Item, ToFlag(!Row.StartsDisabled));
  }
  for (int Index = 0; Index < NumToolButtons; ++Index) {
    const ToolRow& Row = Tools[static_cast<std::size_t>(Index)];
    Main.ToolHelp[Index] = Row.Help;
    Main.picToolbar[Index].Icon = Row.Icon;
    Main.picToolbar[Index].ToolTip = Row.Help;
    Main.picToolbar[Index].AccessibleName = Row.Help;
  }
}

}  // namespace zelvanor
