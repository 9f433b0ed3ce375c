#include <unistd.h>

#include <sstream>

#include "Support.h"
#include "platform/Profile.h"
#include "program.h"
#include "settings/ColorSets.h"
#include "settings/ProfileAccess.h"
#include "settings/Settings.h"

namespace zelvanor::test {
namespace {

class SettingsTest : public ProgramTest {};

// Each file stands in a folder of its own, which win.ini names.
Text UseIni(const std::optional<Text>& Content) {
  static int Count = 0;
  const Text Name = "ini" + std::to_string(++Count);
  const Text Folder = MakeFolder(Name);
  if (Content) WriteFile(Name + "/nmr.ini", *Content);
  const Text WinIni = WriteFile(Name + "/win.ini", "[Zelvanor]\nNMRExePath=" + Folder + "\n");
  Platform.WinIniPath = [WinIni] { return WinIni; };
  return Folder + "/nmr.ini";
}

void ReadIni(const Text& Content) {
  UseIni(Content);
  InitRadiusSets();
  InitColorSets();
  ReadSettings();
}

TEST_F(SettingsTest, ProfileLookUps) {
  const Text Long(200, 'v');
  const Text File = WriteFile("look.ini",
                              "stray=1\r\n"
                              "; a=comment\r\n"
                              "[First]\r\n"
                              "a = one two \r\n"
                              "A=second\r\n"
                              "#b=comment\r\n"
                              "b=\r\n"
                              "c=\"  quoted \"\r\n"
                              "d='x'\r\n"
                              "e=\"open\r\n"
                              "f=a=b\r\n"
                              "g;=1\r\n"
                              "no value\r\n"
                              "long=" +
                                  Long +
                                  "\r\n"
                                  "  [ SECOND ] junk\r\n"
                                  "\ta\t=\t2\t\r\n"
                                  "[broken\r\n"
                                  "z=last");
  struct Row {
    const char* Section;
    const char* Key;
    Text Value;
  };
  const Row Rows[] = {{"First", "a", "one two"},  {"FIRST", "A", "one two"},
                      {"First", "b", ""},         {"First", "c", "  quoted "},
                      {"First", "d", "x"},        {"First", "e", "\"open"},
                      {"First", "f", "a=b"},      {"First", "z", "none"},
                      {"second", "a", "2"},       {"Second", "z", "last"},
                      {"Third", "a", "none"},     {"First", "no value", "none"},
                      {"First", "stray", "none"}, {"First", "long", Long.substr(0, 128)}};
  for (const Row& R : Rows)
    EXPECT_EQ(GetPrivateProfileString(R.Section, R.Key, "none", File), R.Value) << R.Section << " " << R.Key;
  EXPECT_EQ(GetPrivateProfileString("First", "a", Long, TempPath("missing.ini")), Long.substr(0, 128));
  EXPECT_EQ(GetPrivateProfileString("First", "a", "none", MakeFolder("folder.ini")), "none");
}

TEST_F(SettingsTest, ProfileWritesKeepEverythingElse) {
  struct Row {
    const char* What;
    Text Before;
    std::vector<ProfileEntry> Entries;
    Text After;
  };
  const Row Rows[] = {
      {"new file",
       "",
       {{"nmr", "A", "1"}, {"nmr", "B", "2"}, {"Other", "A", "3"}},
       "[nmr]\nA=1\nB=2\n\n[Other]\nA=3\n"},
      {"comments, order and unknown keys stay",
       "; head\r\n[NMR]\r\n; note\r\na = old\r\nunknown=7\r\n\r\n[z]\r\nA=9\r\n",
       {{"nmr", "A", "new"}, {"nmr", "C", "added"}},
       "; head\r\n[NMR]\r\n; note\r\nA=new\r\nunknown=7\r\nC=added\r\n\r\n[z]\r\nA=9\r\n"},
      {"the first of two keys is the one", "[nmr]\na=1\na=2\n", {{"nmr", "A", "3"}}, "[nmr]\nA=3\na=2\n"},
      {"an empty section", "[nmr]\n[z]\n", {{"nmr", "A", "1"}}, "[nmr]\nA=1\n[z]\n"},
      {"no line end at the end", "[nmr]\nb=1", {{"nmr", "A", "1"}}, "[nmr]\nb=1\nA=1\n"},
      {"each line keeps its own end", "[nmr]\r\nb\r\r\nc\nd", {{"nmr", "A", "1"}}, "[nmr]\r\nb\r\r\nc\nd\r\nA=1\r\n"},
      {"an empty value", "[nmr]\nA=1\n", {{"nmr", "A", ""}}, "[nmr]\nA=\n"}};
  for (const Row& R : Rows) {
    const Text File = WriteFile("write.ini", R.Before);
    EXPECT_TRUE(WritePrivateProfileStrings(R.Entries, File)) << R.What;
    EXPECT_EQ(ReadBytes(File), R.After) << R.What;
  }
  const Text Kept = WriteFile("kept.ini", "[nmr]\nA=1\n");
  {
    const FullDisk Disk(5);
    EXPECT_FALSE(WritePrivateProfileStrings({{"nmr", "B", Text(5000, 'x')}}, Kept));
  }
  EXPECT_EQ(ReadBytes(Kept), "[nmr]\nA=1\n");
  EXPECT_FALSE(WritePrivateProfileStrings({{"nmr", "A", "1"}}, TempPath("no-folder/a.ini")));
}

TEST_F(SettingsTest, PathsOfWinIni) {
  const Text Long = "/" + Text(150, 'p');
  struct Row {
    const char* What;
    Text Content;
    Texts Paths;  // of the program, the settings, the parameters
    Flag Found = True;
  };
  const Row Rows[] = {
      {"the first alone", "[Morvantis]\nNMRExePath=/e\n", {"/e", "/e", "/e"}},
      {"all three", "[morvantis]\nnmrexepath=/e\nNMRIniPath=/i\nNMRParmPath=/p\n", {"/e", "/i", "/p"}},
      {"empty ones fall back", "[Morvantis]\nNMRExePath=/e\nNMRIniPath=\nNMRParmPath=/p\n", {"/e", "/e", "/p"}},
      {"the host's section comes first", "[Zelvanor]\nNMRExePath=/z\n[Morvantis]\nNMRExePath=/e\n", {"/e", "/e", "/e"}},
      {"an empty one gives way for all keys",
       "[Morvantis]\nNMRExePath=\nNMRIniPath=/i\n[Zelvanor]\nNMRExePath=/z\nNMRParmPath=/q\n",
       {"/z", "/z", "/q"}},
      {"128 characters",
       "[Zelvanor]\nNMRExePath=" + Long + "\n",
       {Long.substr(0, 128), Long.substr(0, 128), Long.substr(0, 128)}},
      {"no section", "[Other]\nNMRExePath=/e\n", {"/opt/own", "/opt/own", "/opt/own"}, False},
      {"a section without the first", "[Morvantis]\nNMRIniPath=/i\n", {"/opt/own", "/opt/own", "/opt/own"}, False}};
  for (const Row& R : Rows) {
    ResetProgram();
    const Text WinIni = WriteFile(Text("win") + std::to_string(&R - Rows), R.Content);
    Platform.WinIniPath = [&] { return WinIni; };
    EXPECT_EQ(LoadProfilePaths(), R.Found) << R.What;
    EXPECT_EQ((Texts{Settings.NMRExePath, Settings.NMRIniPath, Settings.NMRParmPath}), R.Paths) << R.What;
    EXPECT_EQ(Shown().Boxes,
              IsSet(R.Found)
                  ? Texts{}
                  : Texts{"warning There is neither Morvantis section nor Zelvanor section in your win.ini file."
                          "  So Zelvanor supposes that the following file are at the directory /opt/own:"
                          "  nmr.ini, nmrcalc.exe, nmr_shft.abp, nmr_cupl.abp, etc"})
        << R.What;
  }
  NameWorkingFiles();
  EXPECT_EQ(Settings.IniFile, "/opt/own/nmr.ini");
  EXPECT_EQ(Settings.ParamInputFile, "/opt/own/nmrparam.in");
  EXPECT_EQ(Settings.SpectOutputFile, "/opt/own/nmrspect.out");
  EXPECT_EQ(Settings.CalcExeFile, "/opt/own/nmrcalc.exe");
}

enum class Outcome { Good, Warned, Ends };
using enum Outcome;

struct ValueRow {
  const char* Key;
  const char* Value;
  Outcome Is;
  const char* Variable;  // what the variable holds; null: it has none
  int Slot;
  const char* Stored;       // the text of the slot
  const char* Others = "";  // more lines of the section
};

TEST_F(SettingsTest, EachValueAndItsLimits) {
  const ValueRow Rows[] = {
      {"AtomRenderType", "1", Good, nullptr, 0, "1"},
      {"AtomRenderType", "3", Good, nullptr, 0, "3"},
      {"AtomRenderType", "0", Warned, nullptr, 0, "1"},
      {"AtomRenderType", "4", Warned, nullptr, 0, "1"},
      {"BondRenderType", "-1", Warned, nullptr, 1, "1"},
      {"BondRenderType", "two", Ends, nullptr, 1, ""},
      {"BackColor", "anything", Good, nullptr, 2, "anything"},
      {"SelectionColor", "RGB(1,2,3)", Good, "197121", 5, "RGB(1,2,3)"},
      {"SemiEmpiricalMethod", "krdo1", Good, "krdo1", 11, "krdo1"},
      {"SemiEmpiricalMethod", "KRDO2", Good, "KRDO2", 11, "KRDO2"},
      {"SemiEmpiricalMethod", "KRDO3", Warned, "KRDO2", 11, "KRDO2"},
      {"SemiEmpiricalMethod", "", Warned, "KRDO2", 11, "KRDO2"},
      {"SemiEmpiricalMethod", "|KRDO1", Warned, "KRDO2", 11, "KRDO2"},
      {"TotalCharge", "-10", Good, "-10", 12, "-10"},
      {"TotalCharge", "10", Good, "10", 12, "10"},
      {"TotalCharge", "-11", Warned, "0", 12, "0"},
      {"TotalCharge", "11", Warned, "0", 12, "0"},
      {"TotalCharge", "1E1", Good, "10", 12, "1E1"},
      {"TotalCharge", "10.5", Good, "10", 12, "10.5"},
      {"TotalCharge", "+1 x", Ends, "0", 12, ""},
      {"SpinMultiplicity", "1", Good, "1", 13, "1"},
      {"SpinMultiplicity", "2", Warned, "1", 13, "1"},
      {"SpinMultiplicity", "0", Warned, "1", 13, "1"},
      {"SCFConvergenceLimit", "0", Good, "0", 14, "0"},
      {"SCFConvergenceLimit", "1000", Good, "1000", 14, "1000"},
      {"SCFConvergenceLimit", "1000.00001", Good, "1000", 14, "1000.00001"},
      {"SCFConvergenceLimit", "1000.1", Warned, "0.01", 14, "0.01"},
      {"SCFConvergenceLimit", "-1E-9", Warned, "0.01", 14, "0.01"},
      {"SCFConvergenceLimit", "", Ends, "0", 14, ""},
      {"SCFIterationLimit", "10000", Good, "10000", 15, "10000"},
      {"SCFIterationLimit", "10001", Warned, "50", 15, "50"},
      {"SCFIterationLimit", "-1", Warned, "50", 15, "50"},
      {"SCFAccelerateConvergence", "true", Good, "-1", 16, "true"},
      {"SCFAccelerateConvergence", "on", Good, "0", 16, "on"},
      {"LogPrintLevel", "-7", Good, "-7", 17, "-7"},
      {"LogPrintLevel", "32767", Good, "32767", 17, "32767"},
      {"LogPrintLevel", "32768", Ends, "0", 17, ""},
      {"LogPrintLevel", "", Ends, "0", 17, ""},
      {"MinimalIntensity", "0.1", Good, "0.100000001490116", 26, "0.1"},
      {"MinimalIntensity", "0.100000001490116", Good, "0.100000001490116", 26, "0.100000001490116"},
      {"MinimalIntensity", "1000", Good, "1000", 26, "1000"},
      {"MinimalIntensity", "1001", Warned, "0.100000001490116", 26, "0.1"},
      {"AbsLineWidth", "1", Good, "-1", 27, "1"},
      {"MinAbsLineWidth", "-1", Good, "-1", 28, "-1"},
      {"MinAbsLineWidth", "-1", Warned, "0", 28, "0", "AbsLineWidth=Yes"},
      {"MinAbsLineWidth", "1000", Good, "1000", 28, "1000", "AbsLineWidth=Yes"},
      {"MinAbsLineWidth", "wide", Ends, "0", 28, ""},
      {"MaxAbsLineWidth", "1001", Good, "1001", 29, "1001"},
      {"MaxAbsLineWidth", "1001", Warned, "10", 29, "10", "AbsLineWidth=Yes"},
      {"MaxAbsLineWidth", "0", Good, "0", 29, "0", "AbsLineWidth=Yes"},
      {"ModifySlaterExponents", "N", Good, "0", 18, "N"},
      {"ComputeThreeCenterTerms", "Y", Good, "-1", 19, "Y"},
      {"IncludeDOrbitalsForSecondRow", "T", Good, "-1", 20, "T"},
      {"CalculateShielding", "No", Good, "0", 21, "No"},
      {"CalculateCoupling", "yes", Good, "-1", 22, "yes"},
      {"CalculateCoupling", "No", Good, "0", 22, "No"},
      {"NMRFrequency", "1", Good, "1", 23, "1"},
      {"NMRFrequency", "1000000", Good, "1000000", 23, "1000000"},
      {"NMRFrequency", "0", Warned, "100", 23, "100"},
      {"NMRFrequency", "1000001", Warned, "100", 23, "100"},
      {"NMRFrequency", "\" 300 \"", Good, "300", 23, "300"},
      {"SpectraType", "PROTON", Good, "0", 24, "PROTON"},
      {"SpectraType", "Carbon-13", Good, "1", 24, "Carbon-13"},
      {"SpectraType", "nitrogen-15", Good, "2", 24, "nitrogen-15"},
      {"SpectraType", "Fluorine-19", Good, "3", 24, "Fluorine-19"},
      {"SpectraType", "Phosphorus-31", Good, "4", 24, "Phosphorus-31"},
      {"SpectraType", "Carbon", Warned, "0", 24, "Proton"},
      {"SpectraType", "??", Warned, "0", 24, "Proton"},
      {"WeakCouplingApproximation", "Yes", Good, "-1", 30, "Yes"}};
  for (const ValueRow& R : Rows) {
    ResetProgram();
    const Text What = Text(R.Key) + "=" + R.Value + " " + R.Others;
    const bool Ended = EndsProgram([&] { ReadIni(Join("[nmr]\n", R.Others, "\n", R.Key, "=", R.Value, "\n")); });
    EXPECT_EQ(Ended, R.Is == Ends) << What;
    Text Named = R.Value;
    if (Named.starts_with('"')) Named = "300";
    const Text Warning = "warning The initial value '" + Named + "' for the item <" + R.Key + "> in the " +
                         Settings.IniFile + " file is not valid.";
    if (R.Is == Ends) {
      ASSERT_EQ(Shown().Boxes.size(), 1U) << What;
      EXPECT_TRUE(Shown().Boxes[0].starts_with("error Error in ini file: ")) << What;
      continue;
    }
    EXPECT_EQ(Shown().Boxes, R.Is == Warned ? Texts{Warning} : Texts{}) << What;
    EXPECT_EQ(Settings.SettingsText[static_cast<std::size_t>(R.Slot)], R.Stored) << What;
    if (R.Variable != nullptr) {
      EXPECT_EQ(VariableText(R.Key), R.Variable) << What;
    }
  }
  ResetProgram();
  EXPECT_TRUE(EndsProgram([] { ReadIni("[nmr]\nSpectrumLineColor=green\n"); }));
  ASSERT_EQ(Shown().Boxes.size(), 2U);
  EXPECT_EQ(Shown().Boxes[0], "error Bad color specification: \"green\"");
  EXPECT_TRUE(Shown().Boxes[1].starts_with("error Error in ini file: "));
}

const Texts DefaultNmrLines = Pieces(
    "[nmr]|AtomRenderType=1|BondRenderType=1|BackColor=RGB(255, 255, 255)|LabelColor=RGB(255, 255, "
    "0)|BondColor=RGB(192, 192, 192)|SelectionColor=RGB(0, 255, "
    "128)|SpectrumLineColor=RGB(0,255,0)|SpectrumEnvelopColor=RGB(255,255,255)|SpectrumSelectionColor=RGB(255,0,255)|"
    "SemiEmpiricalMethod=KRDO2|TotalCharge=0|SpinMultiplicity=1|SCFConvergenceLimit=0.01|SCFIterationLimit=50|"
    "SCFAccelerateConvergence=No|LogPrintLevel=0|MinimalIntensity=0.100000001490116|AbsLineWidth=No|MinAbsLineWidth=0|"
    "MaxAbsLineWidth=10|ModifySlaterExponents=Yes|ComputeThreeCenterTerms=No|IncludeDOrbitalsForSecondRow=No|"
    "CalculateShielding=Yes|CalculateShieldingTensor=Yes|CalculateCoupling=Yes|NMRFrequency=100|SpectraType=Proton|"
    "WeakCouplingApproximation=No|[ReferenceShieldings]|H=0|C=0|N=0|O=0|F=0|P=0");

Texts FilledLines(const Text& Content) {
  Texts Lines;
  std::istringstream Stream(Content);
  for (Text Line; std::getline(Stream, Line);) {
    if (!Line.empty()) Lines.push_back(Line);
  }
  return Lines;
}

// The start-up up to the reading of the settings and the exit, with nothing changed in between.
TEST_F(SettingsTest, DefaultsComeIntoBeingAtTheFirstExit) {
  const Text Ini = UseIni({});
  Form_Load("");
  EXPECT_EQ(Shown().Boxes, Texts{"warning No running Morvantis."});
  EXPECT_FALSE(Exists(Ini)) << "nothing is written before the exit";
  EXPECT_EQ(SpectrumView.GraphClr, Rgb(0, 255, 0));
  EXPECT_EQ(SpectrumView.SelectionClr, Rgb(255, 0, 255));
  EXPECT_EQ(SpectrumView.EnvelopClr, White);
  EXPECT_EQ(Settings.AtomColors[0], Rgb(128, 128, 128));
  EXPECT_EQ(Settings.AtomRadii[128], 0.3F);
  WriteSettings();
  EXPECT_EQ(FilledLines(ReadBytes(Ini)), DefaultNmrLines);
  // Its own output is read back without a word and written back unchanged.
  const Text Bytes = ReadBytes(Ini);
  ResetProgram();
  Settings = {};
  const Text Again = UseIni(Bytes);
  Form_Load("");
  EXPECT_EQ(Shown().Boxes, Texts{"warning No running Morvantis."});
  WriteSettings();
  EXPECT_EQ(ReadBytes(Again), Bytes);
}

TEST_F(SettingsTest, CurrentOptionsAreWritten) {
  const Text Ini = UseIni("; mine\n[nmr]\nDefaultColorSet=customcolors2\nBackColor=teal\nSpectraType=Phosphorus-31\n");
  Form_Load("");
  Workspace.TotalCharge = -2;
  Workspace.CalculateCoupling = 0;
  Workspace.MinimalIntensity = 0.05;
  Workspace.MaxAbsLineWidth = 0.1F;
  Workspace.ReferenceShielding[1] = 190.5F;
  Workspace.ReferenceShielding[6] = 7;
  Settings.PrefMoleculeSet = True;
  Settings.PrefBackColor = Rgb(1, 2, 3);
  Settings.PrefLabelColor = Rgb(4, 5, 6);
  Settings.PrefMolSelectColor = Rgb(7, 8, 9);
  Settings.PrefEnvelopColor = 300;
  WriteSettings();
  const Text Content = ReadBytes(Ini);
  for (const char* Line :
       {"; mine\n[nmr]\nDefaultColorSet=customcolors2\nBackColor=RGB(1,2,3)\nSpectraType=Phosphorus-31\n",
        "\nTotalCharge=-2\n", "\nCalculateCoupling=No\n", "\nMinimalIntensity=0.05\n", "\nMaxAbsLineWidth=0.1\n",
        "\nC=190.5\n", "\nLabelColor=RGB(4,5,6)\n", "\nSelectionColor=RGB(7,8,9)\n",
        "\nSpectrumEnvelopColor=RGB(44,1,0)\n"}) {
    EXPECT_NE(Content.find(Line), Text::npos) << Line << "\nin\n" << Content;
  }
  EXPECT_EQ(Settings.CurrentColorSet, 2);
  Shown() = {};
  Workspace.SpectraType = 5;  // the file's scale ends before it
  WriteSettings();
  EXPECT_EQ(Shown().Boxes, Texts{"warning Spectrum type \"5\" is not supported by the current version of Zelvanor."});
  EXPECT_NE(ReadBytes(Ini).find("\nSpectraType=??\n"), Text::npos);
}

TEST_F(SettingsTest, Ranges) {
  struct Row {
    int Mode;
    double Value;
    const char* Problem;  // behind "Provide a value "; null: in range
  };
  constexpr const char* NotBelow = "greater than or equal to 0.";
  constexpr const char* NotAbove = "less than or equal to 10.";
  for (const Row& R : {Row{1, 0, nullptr},
                       {1, 10, nullptr},
                       {1, -0.1, NotBelow},
                       {1, 10.1, NotAbove},
                       {2, 10, nullptr},
                       {2, 0, "greater than 0."},
                       {2, 11, NotAbove},
                       {3, 0, "greater than 0."},
                       {3, 10, "less than 10."},
                       {3, 5, nullptr},
                       {4, 0, nullptr},
                       {4, 10, "less than 10."},
                       {4, -1, NotBelow},
                       {9, 10, "less than 10."}}) {
    Shown() = {};
    EXPECT_EQ(CheckRange(R.Value, R.Mode, 0, 10, "width", True), ToFlag(R.Problem == nullptr)) << R.Mode << R.Value;
    EXPECT_EQ(Boxes(),
              R.Problem == nullptr ? Text() : Text("error Error updating \"width\"\nProvide a value ") + R.Problem);
    EXPECT_EQ(CheckRange(R.Value, R.Mode, 0, 10, "", False), ToFlag(R.Problem == nullptr));
  }
  EXPECT_EQ(ValidateNumberText(" 2.5 ", 1, 0, 10, "", True), 2.5);
  EXPECT_EQ(ValidateNumberText("2.5x", 1, 0, 10, "", True), std::nullopt);
}

TEST_F(SettingsTest, Colours) {
  struct Row {
    const char* Value;
    std::optional<Colour> Is;
  };
  const Row Rows[] = {{"RGB(1,2,3)", 197121},
                      {"RGB( 1 , 2 , 3 )", 197121},
                      {"1,2,3)", 197121},
                      {"(1,2,3) and more", 197121},
                      {"RGB(300,0,0)", 300},
                      {"RGB(255, 255, 255)", White},
                      {"RGB(-1,0,0)", -1},
                      {"RGB(0,0,32767)", 2147418112},
                      {"RGB(1,2)", {}},
                      {"RGB(1;2;3)", {}},
                      {"RGB(a,2,3)", {}},
                      {"RGB(,2,3)", {}},
                      {"", {}},
                      {"RGB(40000,0,0)", {}}};
  for (const Row& R : Rows) {
    Shown() = {};
    EXPECT_EQ(ColorFromText(R.Value), R.Is) << R.Value;
    EXPECT_EQ(Shown().Boxes, R.Is ? Texts{} : Texts{Text("error Bad color specification: \"") + R.Value + "\""});
  }
  for (const auto& [Value, Form] :
       {std::pair{White, "RGB(255,255,255)"}, {300, "RGB(44,1,0)"}, {197121, "RGB(1,2,3)"}}) {
    EXPECT_EQ(TextFromColor(Value), Form);
  }
}

TEST_F(SettingsTest, ColourSets) {
  ReadIni(
      "[nmr]\nDefaultColorSet=CUSTOMCOLORS1\n[CustomColors1]\nDefault=RGB(1,2,3)\nH=RGB(9, 0, 0)\nLp=7,0,0)\n"
      "?"
      "?=RGB(8,0,0)\ncl=RGB(5,0,0)\n");
  EXPECT_EQ(Shown().Boxes, Texts{});
  EXPECT_EQ(Settings.CurrentColorSet, 1);
  for (const auto& [Element, Is] : {std::pair{0, 7}, {1, 9}, {2, 197121}, {17, 5}, {103, 197121}, {104, 8}, {128, 8}}) {
    EXPECT_EQ(Settings.AtomColors[static_cast<std::size_t>(Element)], Is) << Element;
  }
  ResetProgram();
  ReadIni("[nmr]\nDefaultColorSet=Unknown\n[MorvantisColors]\nH=RGB(9,0,0)\nLi=red\nBe=RGB(1,1,1)\n");
  ExpectValues("CurrentColorSet=0 AtomColors(1)=9");
  EXPECT_EQ(Settings.AtomColors[2], Rgb(128, 128, 128));
  EXPECT_EQ(Settings.AtomColors[3], Rgb(192, 192, 192));
  EXPECT_EQ(Settings.AtomColors[4], Rgb(192, 192, 192)) << "reading stops";
  EXPECT_EQ(Shown().Boxes, (Texts{"error Bad color specification: \"red\"",
                                  "error Error reading ColorSet entry for \"Li\" in section [MorvantisColors]"}));
  for (const auto& [Index, Set] : {std::pair{-1, 0}, {2, 2}, {1, 1}, {7, 0}}) {
    SelectColorSet(Index);
    EXPECT_EQ(Settings.CurrentColorSet, Set) << Index;
  }
  EXPECT_EQ(FindColorSet("customcolors2"), 2);
  EXPECT_EQ(FindRadiusSet("CPKradii"), 1);
  EXPECT_EQ(FindRadiusSet("none"), -1);
  EXPECT_EQ(GetRadiusSetName(2), "CustomRadii");
  EXPECT_EQ(Settings.ColorSetTitle[0], "Morvantis colors");
  EXPECT_EQ(Settings.RadiusSetTitle[1], "CPK Spheres");
  Shown() = {};
  InitColorSets();
  EXPECT_EQ(Shown().Boxes, Texts{"error ReInit"});
  EXPECT_EQ(Settings.CurrentColorSet, -1);
}

}  // namespace
}  // namespace zelvanor::test
