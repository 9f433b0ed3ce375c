#include <set>

#include "Support.h"
#include "platform/Form.h"
#include "program.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

class FrameTest : public ProgramTest {};

MenuItem& Named(const Text& Name) {
  Control* Found = FindControl(Name);
  EXPECT_TRUE(Found != nullptr && Found->Kind == ControlKind::MenuItem) << Name;
  return static_cast<MenuItem&>(*Found);
}

TEST_F(FrameTest, MenuHelpTexts) {
  struct Row {
    int Flags;
    Text Item;
    const char* Help;  // null: the status line stays
  };
  const Row Rows[] = {{0, "&New\tCtrl+N", "Clear the workspace."},
                      {0, "&New", "Clear the workspace."},
                      {0x80, "&Gaussian ", "Display the NMR spectrum in the Gaussian distribution."},
                      {0, "I  - Shielding && &Coupling", "Compute NMR shielding and coupling constants."},
                      {0, "&File", "Access files and Morvantis."},
                      {0, "&Replace Selected Entry By...\tCtrl+P", nullptr},
                      {0, "&Setup", nullptr},
                      {0, "-", nullptr},
                      {0, "New", nullptr},
                      {0, "", nullptr},
                      {0x2000, "&New", nullptr},
                      {4, "&New", nullptr},
                      {0x2084, "&New", nullptr},
                      {0, Text(63, 'x') + "&New", nullptr}};
  for (const Row& R : Rows) {
    Shown().Statuses.clear();
    SubClass1_MenuSelect(R.Flags, R.Item);
    EXPECT_EQ(Shown().Statuses, R.Help == nullptr ? Texts{} : Texts{Text(" ") + R.Help}) << R.Item;
  }
}

// Each command's rule over all 32 states of the flags that it goes by, in every view.
TEST_F(FrameTest, CommandsFollowTheFlags) {
  struct State {
    bool M, S, C, P, Dirty;
    int View;
    bool Any() const { return M || S || C || P; }
  };
  struct Rule {
    Texts Items;
    bool (*Holds)(const State& X);
  };
  const Rule Enabled[] = {
      {{"mnuFileNew", "picToolbar(0)"}, [](const State& X) { return X.Any(); }},
      {{"mnuFileSave", "mnuFileSaveAs", "picToolbar(2)"}, [](const State& X) { return X.Any() || X.Dirty; }},
      {{"mnuCopy"}, [](const State& X) { return X.View == 1   ? X.M
                                                : X.View == 2 ? X.S
                                                : X.View == 3 ? X.C
                                                              : X.P; }},
      {{"mnuViewGraph"}, [](const State& X) { return X.View == 2 || X.View == 3; }},
      {{"mnuEditCalculateTypes", "mnuViewMolecule", "picToolbar(4)", "mnuSetupNMRParam", "mnuComputeNMR",
        "mnuComputeAll"},
       [](const State& X) { return X.M; }},
      {{"mnuViewShielding", "mnuComputeSpectra", "picToolbar(5)"}, [](const State& X) { return X.S; }},
      {{"mnuViewCoupling", "picToolbar(6)"}, [](const State& X) { return X.C; }},
      {{"mnuViewSpectra", "picToolbar(7)"}, [](const State& X) { return X.P; }},
      {{"picToolbar(8)", "picToolbar(9)", "picToolbar(10)"}, [](const State& X) { return X.View == 1 && X.M; }}};
  const Rule Visible[] = {{{"ShieldTable", "mnuViewGraph"}, [](const State& X) { return X.View == 2 || X.View == 3; }},
                          {{"mnuViewFill4"}, [](const State& X) { return X.Any(); }},
                          {{"Spectrum1", "HScroll1", "HScroll2"}, [](const State& X) { return X.View == 4; }},
                          {{"mnuViewValues"}, [](const State& X) { return X.View == 2 || X.View == 4; }},
                          {{"mnuViewWidths"}, [](const State& X) { return X.View == 4; }}};
  const Rule Marked[] = {{{"mnuViewMolecule"}, [](const State& X) { return X.View == 1; }},
                         {{"mnuViewShielding", "picToolbar(5)"}, [](const State& X) { return X.View == 2; }},
                         {{"mnuViewCoupling", "picToolbar(6)"}, [](const State& X) { return X.View == 3; }},
                         {{"picToolbar(7)"}, [](const State& X) { return X.View == 4; }}};
  for (int Bits = 0; Bits < 32; ++Bits) {
    for (int View = 1; View <= 4; ++View) {
      ResetProgram();
      const State X{(Bits & 1) != 0, (Bits & 2) != 0, (Bits & 4) != 0, (Bits & 8) != 0, (Bits & 16) != 0, View};
      W.MoleculeLoaded = ToFlag(X.M);
      W.ShieldingAvailable = ToFlag(X.S);
      W.CouplingAvailable = ToFlag(X.C);
      W.SpectraAvailable = ToFlag(X.P);
      W.DocumentDirty = ToFlag(X.Dirty);
      UpdateCommands(View);
      const Text What = " with flags " + std::to_string(Bits) + " in view " + std::to_string(View);
      for (const Rule& R : Enabled) {
        for (const Text& Name : R.Items) EXPECT_EQ(FindControl(Name)->Enabled, ToFlag(R.Holds(X))) << Name << What;
      }
      for (const Rule& R : Visible) {
        for (const Text& Name : R.Items) EXPECT_EQ(FindControl(Name)->Visible, ToFlag(R.Holds(X))) << Name << What;
      }
      for (const Rule& R : Marked) {
        for (const Text& Name : R.Items) {
          const Control* Item = FindControl(Name);
          const Flag Is = Item->Kind == ControlKind::MenuItem ? static_cast<const MenuItem*>(Item)->Checked
                                                              : static_cast<const ToolButton*>(Item)->Pressed;
          EXPECT_EQ(Is, ToFlag(R.Holds(X))) << Name << What;
        }
      }
      EXPECT_EQ(Main.picToolbar[8].Pressed, ToFlag(View == 1 && X.M)) << What;
    }
  }
  // Results alone: stage 1 has nothing to run on. A line width menu that is hidden stays so in the spectrum view.
  W.MoleculeLoaded = True;
  W.NumAtoms = 2;
  W.NumNMRAtoms = 3;
  SetVisible(Main.mnuViewWidths, False);
  UpdateCommands(4);
  EXPECT_EQ(Main.mnuComputeNMR.Enabled, 0);
  EXPECT_EQ(Main.mnuComputeAll.Enabled, 0);
  EXPECT_EQ(Main.mnuSetupNMRParam.Enabled, 0);
  EXPECT_EQ(Main.mnuViewWidths.Visible, 0);
  W.NumNMRAtoms = 2;
  UpdateCommands(4);
  EXPECT_EQ(Main.mnuComputeNMR.Enabled, -1);
}

TEST_F(FrameTest, BusyTurnsTheMenusOff) {
  int Events = 0;
  Platform.DoEvents = [&] { ++Events; };
  for (const Flag Ready : {False, True}) {
    SetBusy(Ready);
    for (const char* Name : {"mnuFile", "mnuEdit", "mnuView", "mnuSetup", "mnuCompute"})
      EXPECT_EQ(Named(Name).Enabled, Ready) << Name;
    EXPECT_EQ(Main.mnuHelp.Enabled, -1);
  }
  EXPECT_EQ(Shown().Pointers, (std::vector{MousePointer::Hourglass, MousePointer::Default}));
  EXPECT_EQ(Events, 2);
}

TEST_F(FrameTest, ViewsAndToolbar) {
  struct Row {
    int Button;
    int View;
    const char* Status;
    const char* ValuesCaption;
  };
  for (const Row& R : {Row{4, 1, " View the molecule.", "&Values..."},
                       Row{5, 2, " View the shielding constants.", "Shielding &Tensor..."},
                       Row{6, 3, " View the spin-coupling constants.", "&Values..."},
                       Row{7, 4, " View the NMR spectrum.", "Spectral &Values..."}}) {
    ResetProgram();
    W.ViewMode = R.Button == 4 ? 2 : 1;
    Fire(Main.picToolbar[R.Button].Click);
    EXPECT_EQ(W.ViewMode, R.View);
    EXPECT_EQ(Main.mnuViewValues.Caption, R.ValuesCaption) << R.Button;
    ASSERT_FALSE(Shown().Statuses.empty());
    EXPECT_EQ(Shown().Statuses[0], R.Status);
  }
  mnuViewSpectra_Click();
  EXPECT_EQ(Shown().Statuses.back(), " View the NMR spectrum.");
  // The spectrum button repeats the display that is checked.
  for (const auto& [Item, Mode] :
       {std::pair{&Main.mnuEnvelop, 1}, {&Main.mnuLinesAndEnvelop, 2}, {&Main.mnuLines, 0}}) {
    for (MenuItem* Each : {&Main.mnuLines, &Main.mnuEnvelop, &Main.mnuLinesAndEnvelop})
      Each->Checked = ToFlag(Each == Item);
    SpectrumView.DisplayMode = 0;
    Fire(Main.picToolbar[7].Click);
    EXPECT_EQ(SpectrumView.DisplayMode, Mode);
  }
  struct Tool {
    int Button;
    int Mode;
    const char* Hint;
  };
  for (const Tool& T : {Tool{9, 1, " L-click to select, R-click to unselect."},
                        Tool{10, 3, " L-drag mouse to translate, R-drag mouse vertically to magnify."},
                        Tool{8, 2, " L-drag for 3-D rotation, R-drag for in-plane rotation."}}) {
    Fire(Main.picToolbar[T.Button].Click);
    EXPECT_EQ(Main.MouseMode, T.Mode);
    EXPECT_EQ(Shown().Statuses.back(), T.Hint);
    for (int Button = 8; Button <= 10; ++Button) EXPECT_EQ(Main.picToolbar[Button].Pressed, ToFlag(Button == T.Button));
  }
  Fire(Main.picToolbar[2].MouseDown);
  EXPECT_EQ(Shown().Statuses.back(), " Save the current system into its file.");
  Fire(Main.picToolbar[2].MouseUp);
  EXPECT_EQ(Shown().Statuses.back(), " ");
  Main.HelpFile = "/x/nmr.hlp";
  Fire(Main.mnuHelpContents.Click);
  Fire(Main.mnuHelpUsing.Click);
  EXPECT_EQ(Shown().Helps, (Texts{"/x/nmr.hlp 3 1", "/x/nmr.hlp 4 2"}));
  Fire(Main.mnuAbout.Click);
  EXPECT_EQ(Shown().Statuses.back(), " See version imformation.");
}

TEST_F(FrameTest, Layout) {
  struct Row {
    int Height;    // of the window, pixels; toolbar 30, status line 20, bars 10 each
    int Spectrum;  // twips
    int PanTop;    // pixels
    Flag Status;
  };
  for (const Row& R :
       {Row{400, 330 * 15, 370, -1}, Row{71, 15, 41, -1}, Row{60, 1, 30, -1}, Row{30, 1, 30, -1}, Row{29, 1, 30, 0}}) {
    Main.frmNMR.Width = 500 * 15;
    Main.frmNMR.Height = R.Height * 15;
    Form_Resize();
    EXPECT_EQ(Main.StatusBar.Visible, R.Status) << R.Height;
    EXPECT_EQ(Main.ShieldTable.Top, 30 * 15) << R.Height;
    EXPECT_EQ(Main.ShieldTable.Height, 0) << R.Height;
    EXPECT_EQ(Main.HScroll2.Top, 30 * 15) << R.Height;
    EXPECT_EQ(Main.Spectrum1.Top, 40 * 15) << R.Height;
    EXPECT_EQ(Main.Spectrum1.Height, R.Spectrum) << R.Height;
    EXPECT_EQ(Main.HScroll1.Top, R.PanTop * 15) << R.Height;
    for (const Control* Each : {static_cast<Control*>(&Main.ShieldTable), static_cast<Control*>(&Main.HScroll1),
                                static_cast<Control*>(&Main.HScroll2), static_cast<Control*>(&Main.Spectrum1)}) {
      EXPECT_EQ(Each->Left, 0) << Each->Name;
      EXPECT_EQ(Each->Width, 500 * 15) << Each->Name;
    }
  }
}

// ------------------------------------------------------------------------------------------------ start-up and exit

Text UseSettings(const Text& Content) {
  const Text Folder = MakeFolder("start");
  const Text Ini = WriteFile("start/nmr.ini", Content);
  const Text WinIni = WriteFile("start/win.ini", "[Morvantis]\nNMRExePath=" + Folder + "\n");
  Platform.WinIniPath = [WinIni] { return WinIni; };
  return Ini;
}

TEST_F(FrameTest, ExitAsksAndSaves) {
  const Text Ini = UseSettings("");
  Form_Load("");
  W.DocumentDirty = True;
  EXPECT_FALSE(EndsProgram([] { Fire(Main.mnuFileExit.Click); }));
  EXPECT_EQ(Shown().Boxes.back(), "question Save the changes to (untitled)?");
  EXPECT_EQ(ReadBytes(Ini), "") << "cancelled";
  Shown().Answers = {BoxAnswer::No};
  EXPECT_TRUE(EndsProgram([] { Fire(Main.mnuFileExit.Click); }));
  EXPECT_NE(ReadBytes(Ini).find("TotalCharge=0"), Text::npos);
}

TEST_F(FrameTest, RefreshGoesOnPastFailures) {
  const FrameRooms Former = Rooms;
  int Views = 0;
  Rooms.ForgetFrequencyRange = [] { throw Failure("x"); };
  Rooms.ShowShieldingTable = [&] {
    ++Views;
    throw Failure("y");
  };
  W.ViewMode = 2;
  EXPECT_EQ(FailureOf(RefreshView), "no failure");
  EXPECT_EQ(Views, 1);
  Rooms = Former;
}

}  // namespace
}  // namespace zelvanor::test
