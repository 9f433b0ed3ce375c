#include <set>

#include "Support.h"
#include "platform/Form.h"
#include "program.h"

namespace zelvanor::test {
namespace {

WorkspaceState& W = Workspace;

class FrameTest : public ProgramTest {};

MenuItem& ItemOf(const MenuRow& Row) { return Main.*Row.Item; }

MenuItem& Named(const Text& Name) {
  Control* Found = FindControl(Name);
  EXPECT_TRUE(Found != nullptr && Found->Kind == ControlKind::MenuItem) << Name;
  return static_cast<MenuItem&>(*Found);
}

TEST_F(FrameTest, EveryMenuRowIsWhole) {
  std::set<const MenuItem*> Seen;
  std::set<Text> Names;
  std::set<Text> Shortcuts;
  for (const MenuRow& Row : MenuRows()) {
    const MenuItem& Item = ItemOf(Row);
    EXPECT_TRUE(Seen.insert(&Item).second) << Item.Name << " stands twice";
    EXPECT_TRUE(Names.insert(Item.Name).second) << Item.Name << " names two items";
    EXPECT_FALSE(Item.Caption.empty()) << Item.Name;
    EXPECT_EQ(Item.Separator, Item.Caption == "-") << Item.Name;
    EXPECT_TRUE(Item.Parent == nullptr || (Seen.contains(Item.Parent) && !Item.Parent->Separator))
        << Item.Name << " comes before its parent";
    EXPECT_TRUE(Item.Shortcut.empty() || Shortcuts.insert(Item.Shortcut).second) << Item.Shortcut;
    EXPECT_EQ(FindControl(Item.Name), &Item);
  }
  for (const Control* Each : Main.frmNMR.Controls) {
    if (Each->Kind == ControlKind::MenuItem) {
      EXPECT_TRUE(Seen.contains(static_cast<const MenuItem*>(Each))) << Each->Name << " has no row";
    }
  }
  // Of the items of one menu no two share an access key.
  for (const MenuRow& Row : MenuRows()) {
    std::set<char> Keys;
    for (const MenuRow& Other : MenuRows()) {
      const MenuItem& Item = ItemOf(Other);
      if (Item.Parent != &ItemOf(Row) || Item.Separator) continue;
      std::size_t Mark = Item.Caption.find('&');
      while (Mark != Text::npos && Item.Caption[Mark + 1] == '&') Mark = Item.Caption.find('&', Mark + 2);
      ASSERT_NE(Mark, Text::npos) << Item.Name;
      EXPECT_TRUE(Keys.insert(UpperChar(Item.Caption[Mark + 1])).second)
          << Item.Caption << " in " << ItemOf(Row).Caption;
    }
  }
}

TEST_F(FrameTest, MenuTree) {
  struct Row {
    const char* Name;
    const char* Parent;
    const char* Caption;
    const char* Shortcut;
  };
  const Row Rows[] = {{"mnuFileNew", "mnuFile", "&New", "Ctrl+N"},
                      {"mnuFileOpen", "mnuFile", "&Open...", "Ctrl+O"},
                      {"mnuFileSave", "mnuFile", "&Save", "Ctrl+S"},
                      {"mnuFileSaveAs", "mnuFile", "Save &As...", "Ctrl+A"},
                      {"mnuFileGet", "mnuFile", "&Get Morvantis", "Ctrl+G"},
                      {"mnuPreferences", "mnuFile", "Pre&ferences...", "Ctrl+F"},
                      {"mnuCopy", "mnuEdit", "&Copy", "Ctrl+C"},
                      {"mnuReplace", "mnuEdit", "&Replace Selected Entry By...", "Ctrl+P"},
                      {"mnuLines", "mnuViewSpectra", "&Lines", ""},
                      {"mnuLinesAndEnvelop", "mnuViewSpectra", "Lines &and Envelope", ""},
                      {"mnuGaussian", "mnuViewWidths", "&Gaussian ", ""},
                      {"mnuView3DBar", "mnuViewGraph", "&3D Bar", ""},
                      {"mnuSetupNMRParam", "mnuSetup", "Shielding && &Coupling...", ""},
                      {"mnuComputeNMR", "mnuCompute", "I  - Shielding && &Coupling", ""},
                      {"mnuAbout", "mnuHelp", "&About Zelvanor ...", ""}};
  for (const Row& R : Rows) {
    const MenuItem& Item = Named(R.Name);
    EXPECT_EQ(Item.Caption, R.Caption);
    EXPECT_EQ(Item.Shortcut, R.Shortcut) << R.Name;
    ASSERT_NE(Item.Parent, nullptr) << R.Name;
    EXPECT_EQ(Item.Parent->Name, R.Parent) << R.Name;
  }
  const std::pair<const char*, const char*> Fills[] = {{"mnuFileSaveAs", "mnuFileFill0"},
                                                       {"mnuFileGet", "mnuFileFill1"},
                                                       {"mnuStopLog", "mnuFileFile2"},
                                                       {"mnuPreferences", "mnuFileFill2"},
                                                       {"mnuCopy", "mnuEditFill1"},
                                                       {"mnuReplace", "mnuEditFill2"},
                                                       {"mnuViewMolecule", "mnuViewFill1"},
                                                       {"mnuViewShielding", "mnuViewFill2"},
                                                       {"mnuViewCoupling", "mnuViewFill3"},
                                                       {"mnuViewSpectra", "mnuViewFill4"},
                                                       {"mnuMultipleLineWidths", "LinwidthFill"},
                                                       {"mnuComputeSpectra", "mnuComputeFill"},
                                                       {"mnuHelpUsing", "mnuHelpFill"}};
  for (const auto& [Before, Fill] : Fills) {
    const MenuItem* Sibling = nullptr;
    for (const MenuRow& Row : MenuRows()) {
      if (ItemOf(Row).Name == Fill) break;
      if (ItemOf(Row).Parent == Named(Fill).Parent) Sibling = &ItemOf(Row);
    }
    ASSERT_NE(Sibling, nullptr) << Fill;
    EXPECT_EQ(Sibling->Name, Before) << Fill;
    EXPECT_TRUE(Named(Fill).Separator) << Fill;
  }
  std::set<Text> Disabled;
  for (const MenuRow& Row : MenuRows()) {
    if (!IsSet(ItemOf(Row).Enabled)) Disabled.insert(ItemOf(Row).Name);
  }
  EXPECT_EQ(Disabled, (std::set<Text>{"mnuStopLog", "mnuEditCalculateTypes", "mnuViewMolecule", "mnuViewShielding",
                                      "mnuViewCoupling", "mnuViewSpectra", "mnuComputeNMR", "mnuComputeSpectra",
                                      "mnuComputeAll"}));
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

TEST_F(FrameTest, Keyboard) {
  std::vector<int> Turns;
  Rooms.TurnMolecule = [&](int Degrees) { Turns.push_back(Degrees); };
  struct Row {
    int Key;
    int Shift;
    bool Taken;
    std::vector<int> Turns;
  };
  const Row Rows[] = {{32, 0, true, {}},        {33, 0, true, {}},  {35, 0, true, {7}},       {36, 0, true, {-7}},
                      {35, ShiftKey, true, {}}, {36, 1, true, {}},  {35, CtrlKey, true, {7}}, {40, 0, true, {}},
                      {31, 0, false, {}},       {41, 0, false, {}}, {65, 0, false, {}}};
  for (const Row& R : Rows) {
    for (int View = 1; View <= 4; ++View) {
      Turns.clear();
      W.ViewMode = View;
      int Key = R.Key;
      Form_KeyDown(Key, R.Shift);
      EXPECT_EQ(Key, R.Taken && View == 1 ? 0 : R.Key) << "in view " << View;
      EXPECT_EQ(Turns, View == 1 ? R.Turns : std::vector<int>{}) << R.Key << " in view " << View;
    }
  }
  EXPECT_EQ(Shown().Statuses, Texts{" Scale to fit the molecule on the screen."});
  Rooms.TurnMolecule = nullptr;
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

TEST_F(FrameTest, StartUpIsRefused) {
  const Text Ini = UseSettings("[nmr]\nTotalCharge=7\n");
  Platform.DecimalSeparator = [] { return Text(","); };
  EXPECT_TRUE(EndsProgram([] { Form_Load(""); }));
  Platform.OtherInstanceRuns = [] { return true; };
  EXPECT_TRUE(EndsProgram([] { Form_Load(""); }));
  EXPECT_EQ(Shown().Boxes,
            (Texts{"error Sorry, Zelvanor will not run with the current Windows number format.  Please change the "
                   "International Settings using the Windows Control Panel and use \".\" for the decimal separator.",
                   "error Zelvanor is already running."}));
  EXPECT_EQ(W.TotalCharge, 0) << "the settings have not been read";
  EXPECT_EQ(ReadBytes(Ini), "[nmr]\nTotalCharge=7\n");
}

TEST_F(FrameTest, StartUpEndsWithAnEmptyWorkspace) {
  const Text Ini = UseSettings("[nmr]\nTotalCharge=7\nSpectrumLineColor=RGB(1,0,0)\n[ReferenceShieldings]\nC=190\n");
  Main.MouseMode = 3;
  Form_Load("");
  EXPECT_EQ(Shown().Boxes, Texts{"warning No running Morvantis."});
  EXPECT_EQ(Main.LinkMode, 0);
  EXPECT_EQ(Main.frmNMR.Caption, "Zelvanor - (untitled)");
  ExpectValues("ViewMode=1 TotalCharge=7 ReferenceShielding(1)=190 NumReferenceElements=6");
  const char* const Names[] = {"Proton",      "Carbon 13",     "Nitrogen 15", "Oxygen 15",
                               "Fluorine 19", "Phosphorus 31", "Proton"};
  EXPECT_EQ(Numbers(W.ReferenceElement, 7), (std::vector<int>{1, 6, 7, 8, 9, 15, 1}));
  for (int Entry = 0; Entry < 7; ++Entry) EXPECT_EQ(W.ReferenceElementName[Entry], Names[Entry]);
  EXPECT_EQ(W.ParamDescription, "Description of NMR shielding and coupling constants");
  EXPECT_EQ(W.SpectDescription, "Description of NMR Spectrum");
  ExpectValues("DocumentDirty=0 IsBusy=0");
  EXPECT_EQ(Settings.MolSelectColor, Rgb(0, 255, 0));
  EXPECT_EQ(Settings.SelectionColor, Rgb(0, 255, 128));
  ExpectValues("PrefGraphColor=1 GraphClr=1 SelectedPeak=0");
  EXPECT_EQ(Main.HelpFile, Settings.NMRExePath + "/nmr.hlp");
  EXPECT_EQ(Main.MouseMode, 2);
  EXPECT_EQ(Main.mnuLorentzian.Checked, -1);
  EXPECT_EQ(Main.mnuReplace.Enabled, 0);
  EXPECT_EQ((std::vector{Main.HScroll1.Min, Main.HScroll1.Max, Main.HScroll1.SmallChange, Main.HScroll1.LargeChange}),
            (std::vector{1000, -1000, 10, 100}));
  EXPECT_EQ((std::vector{Main.HScroll2.Min, Main.HScroll2.Max, Main.HScroll2.Value, Main.HScroll2.LargeChange}),
            (std::vector{1, 100, 10, 10}));
  for (int Button = 0; Button < NumToolButtons; ++Button) {
    EXPECT_EQ(Main.picToolbar[Button].Enabled, ToFlag(Button == 1 || Button == 3)) << Button;
  }
  for (const auto& [Line, Mode] :
       {std::pair{"MORVANTIS", 1}, {"morvantis", 0}, {"MORVANTIS x", 0}, {" MORVANTIS", 0}}) {
    ResetProgram();
    UseSettings("");
    Form_Load(Line);
    EXPECT_EQ(Main.LinkMode, Mode) << Line;
    EXPECT_EQ(VariableText("StartedAlone"), Mode == 1 ? "0" : "-1") << Line;
    EXPECT_EQ(Main.mnuFile.Enabled, -1) << "the closing Get enables it again";
  }
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
