#pragma once

#include <functional>

#include "basic/Types.h"
#include "shell/MainForm.h"

namespace zelvanor {

// What the frame draws and calls without knowing the rooms behind it; program.cpp fills it.
struct FrameRooms {
  std::function<void()> ShowMoleculeView;
  std::function<void()> ShowShieldingTable;
  std::function<void()> ShowCouplingTable;
  std::function<void()> ShowSpectrumView;
  std::function<void()> ForgetFrequencyRange;               // before a view is refreshed
  std::function<void()> OpenZMatrix;                        // reads the file of ZMatrixPath into the atom table
  std::function<void()> UpdateAtomLabels;                   // of the molecule view, for the present atom table
  std::function<void()> TakeOpenedSpectrum;                 // a document that holds a spectrum has been opened
  std::function<void()> FitMolecule;                        // to the surface
  std::function<void(int Degrees)> TurnMolecule;            // about z
  std::function<bool(int KeyCode, int Shift)> SpectrumKey;  // true: the spectrum view has taken the key
  std::function<void()> LinesCommand;                       // the three display commands of the spectrum menu
  std::function<void()> EnvelopCommand;
  std::function<void()> LinesAndEnvelopCommand;
};

extern FrameRooms Rooms;

// Runs a step whose failure leaves things as they are, so that the next step runs.
void IgnoreFailure(const std::function<void()>& Step);

// Captions of mnuViewValues.
inline constexpr const char* SpectralValuesCaption = "Spectral &Values...";
inline constexpr const char* ShieldingTensorCaption = "Shielding &Tensor...";

// "Zelvanor - " and the document's title, in the caption.
void UpdateTitle();

// Enables the commands for the present flags and draws the view of ViewMode. A failure inside is passed over.
void RefreshView();

// The enable logic; View is 1..4.
void UpdateCommands(int View);

// Turns the menus on and shows the default pointer (Ready -1), or turns them off and shows the hourglass (0); then lets
// pending window events run once. The help menu stays.
void SetBusy(Flag Ready);

// Shows the help text of the first menu item with this caption; nothing for an unknown one or one without text.
void MenuHelp(TextView Caption);
// A menu item is pointed at: flags 0x2000 (system menu) and 4 (picture item) have no help. Text is what the menu shows,
// of which 63 characters are looked at, up to a tab.
void SubClass1_MenuSelect(int Flags, TextView ItemText);

// Lays the main window out for its size, but for the scales of the spectrum.
void LayOutWindow();
// The place of the spectrum surface for the window's size; Height is at least 1.
void PlaceSpectrum();
// The width of the molecule pane beside the spectrum, in twips; 0 while it is not shown.
int PaneWidth();
// Shows or hides the pane, or gives it another share of the window's width (10 to 80 percent), and draws anew.
void ShowPane(Flag Shown);
void SetPanePercent(int Percent);

// Keys that the molecule view takes; in the other views every key passes.
void Form_KeyDown(int& KeyCode, int Shift);

// Commands of the frame itself.
void mnuViewMolecule_Click();
void mnuViewShielding_Click();
void mnuViewCoupling_Click();
void mnuViewSpectra_Click();
void mnuHelpContents_Click();
void mnuHelpUsing_Click();
void mnuAbout_Click();
void mnuFileExit_Click();
void picToolbar_Click(int Index);
void picToolbar_MouseDown(int Index);
void picToolbar_MouseUp(int Index);

// Switches to the spectrum view: its caption for the values command, its mode, a refresh.
void EnterSpectrumView();

}  // namespace zelvanor
