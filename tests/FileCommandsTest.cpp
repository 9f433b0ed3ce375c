#include "Support.h"
#include "files/FileCommands.h"

namespace zelvanor::test {
namespace {

class FileCommandsTest : public ProgramTest {};

const Texts Water = {"mol 1", "atom 1 O O OW - 0 0 0 0 2 2 s 3 s", "atom 2 H H HW - 0 1 0 0 1 1 s",
                     "atom 3 H H HW - 0 0 1 0 1 1 s", "endmol 1"};
const Texts Selections = Pieces(
    "NMRSelectionBegin|0|NMRSelectionEnd|QuantumSelectionBegin|0|QuantumSelectionEnd|EquivalentAtomsBegin|"
    "EquivalentAtomsEnd|LabelledAtomsBegin|0|LabelledAtomsEnd");
const Text WaterFile = JoinLines(Water);
const Text WaterDocument = "BeginMVS\r\n" + WaterFile + "EndMVS\r\n" + JoinLines(Selections);

TEST_F(FileCommandsTest, DetectsTheKindOfAFile) {
  struct Row {
    const char* What;
    Text Content;
    int Kind;
  };
  const Text Full = "1.0 1 109.5 1 180.0 1 2 1 3 0\n";
  const Row Rows[] = {
      {"empty", "", 0},
      {"blank lines", "\n\n  \n", 0},
      {"host text", WaterFile, 2},
      {"host words in any case, indented", "  Sys 0\nMOL x\n", 2},
      {"comments count for nothing", "; a\n; b\n; c\n; d\nsys 0\n", 2},
      {"one host line outweighs nothing", "x\nview\n", 2},
      {"document", WaterDocument, 1},
      {"one selection word among host lines", WaterFile + "QuantumSelectionEnd\n", 1},
      {"document words that do not count", "EquivalentAtomsBegin\nLabelledAtomsBegin\nSpectraBegin\n", 0},
      {"a word is a whole token", "NMRSelectionBeginning\nsystem\n", 0},
      {"rows of elements from line 4 on", "AM1\ntitle\n\nx\nC\n", 3},
      {"the first three lines never count", "C\nC\nC\n", 0},
      {"numbers are elements up to 108", "a\nb\nc\n108.9 1\n", 3},
      {"109 is none", "a\nb\nc\n109 1\n", 0},
      {"0 is none, nor is a word", "a\nb\nc\n0\nword\n", 0},
      {"a symbol in any case", "a\nb\nc\ncl\n", 3},
      {"short rows up to line 6", "a\nb\nc\nC\nC 1.5\nC 1.5 1\n", 3},
      {"full rows from line 7 on", "a\nb\nc\nx\nx\nx\nC " + Full, 3},
      {"10 tokens are enough", "a\nb\nc\nx\nx\nx\nC 1 2 3 4 5 6 7 8 9\n", 3},
      {"9 tokens are not", "a\nb\nc\nx\nx\nx\nC 1 2 3 4 5 6 7 8\n", 0},
      {"blank lines do not move the count", "a\n\n\n\n\nb\nc\nx\n\nx\nx\nC 1\n", 0},
      {"as many rows as document words", "BeginMVS\nEndMVS\nx\nC\nC\n", 0},
      {"host lines beside more rows", "mol\na\nb\nC\nC\nC\n", 2},
      {"rows beside one document word", "BeginMVS\na\nb\nC\nC\n", 3}};
  for (const Row& R : Rows) EXPECT_EQ(DetectFileType(WriteFile("kind", R.Content)), R.Kind) << R.What;
  EXPECT_EQ(Shown().Boxes, Texts{});
  EXPECT_EQ(DetectFileType(TempPath("missing")), 0);
  EXPECT_EQ(Shown().Boxes, Texts{"warning File not found."});
}

struct QueryRow {
  const char* What;
  Flag Dirty;
  const char* Title;
  const char* Document;
  const char* Host;
  std::optional<BoxAnswer> Answer;
  const char* Shown;  // in the question; none: no question
  Flag Result;
};

TEST_F(FileCommandsTest, QuerySaveAsks) {
  const QueryRow Rows[] = {
      {"nothing to save", 0, "A.NMR", "/x/a.nmr", "", {}, nullptr, 0},
      {"a document, No", -1, "A.NMR", "/x/a.nmr", "/x/b.mvs", BoxAnswer::No, "/x/a.nmr", 0},
      {"a document, Cancel", -1, "A.NMR", "/x/a.nmr", "", BoxAnswer::Cancel, "/x/a.nmr", -1},
      {"host text", -1, "B.MVS", "", "/x/b.mvs", BoxAnswer::No, "/x/b.NMR", 0},
      {"neither", -1, "C.ZMT", "", "", BoxAnswer::No, "(untitled)", 0},
      {"no title", -1, "", "/x/a.nmr", "/x/b.mvs", BoxAnswer::No, "(untitled)", 0},
      {"Yes, but the save is cancelled", -1, "B.MVS", "", "/x/b.mvs", BoxAnswer::Yes, "/x/b.NMR", -1},
      {"Yes, but the save fails", -1, "A.NMR", "/no-folder/a.nmr", "", BoxAnswer::Yes, "/no-folder/a.nmr", -1}};
  for (const QueryRow& R : Rows) {
    ResetProgram();
    Workspace.DocumentDirty = R.Dirty;
    Workspace.DocumentTitle = R.Title;
    Workspace.DocumentPath = R.Document;
    Workspace.HostTextPath = R.Host;
    if (R.Answer) Shown().Answers = {*R.Answer};
    EXPECT_EQ(QuerySave(), R.Result) << R.What;
    if (R.Shown == nullptr) {
      EXPECT_EQ(Shown().Boxes, Texts{}) << R.What;
    } else {
      ASSERT_FALSE(Shown().Boxes.empty()) << R.What;
      EXPECT_EQ(Shown().Boxes[0], Text("question Save the changes to ") + R.Shown + "?") << R.What;
    }
  }
  ResetProgram();
  Workspace.DocumentDirty = True;
  Shown().Answers = {BoxAnswer::Yes};
  Shown().Files = {TempPath("fresh.nmr")};
  EXPECT_EQ(QuerySave(), 0);
  EXPECT_EQ(Workspace.DocumentTitle, "FRESH.NMR");
}

TEST_F(FileCommandsTest, NewEmptiesAllButTheZMatrixPath) {
  WorkspaceState& W = Workspace;
  W.NumAtoms = W.NumNMRAtoms = 3;
  SetPeaks({{1, 1}});
  W.MoleculeLoaded = W.ShieldingAvailable = W.DocumentDirty = W.ParamResultsStale = True;
  W.DocumentTitle = "A.NMR";
  W.DocumentPath = W.HostTextPath = "/x/a";
  W.ViewMode = SpectrumViewMode;
  Shown().Answers = {BoxAnswer::Cancel, BoxAnswer::No};
  mnuFileNew_Click();
  EXPECT_EQ(W.NumAtoms, 3) << "cancelled";
  mnuFileNew_Click();
  ExpectValues("NumAtoms=0 SpectraAvailable=0 MoleculeLoaded=0 DocumentDirty=0 ParamResultsStale=-1");
  EXPECT_EQ(W.DocumentTitle + W.DocumentPath + W.HostTextPath, "");
  EXPECT_EQ(W.ViewMode, 1);
  EXPECT_EQ(Main.frmNMR.Caption, "Zelvanor - (untitled)");
  EXPECT_EQ(Main.mnuFileNew.Enabled, 0);
  EXPECT_EQ(Main.picToolbar[0].Enabled, 0);
}

struct OpenRow {
  const char* Name;
  Text Content;
  const char* Origin;  // D, H, Z or none
  Texts Boxes;
  int View;
  const char* Title;  // of the window, behind "Zelvanor - "
};

TEST_F(FileCommandsTest, OpensByEndingOrContent) {
  const Text Results =
      "NMRSelectionBegin\r\n0\r\nx\r\nQuantumSelectionBegin\r\n0\r\nx\r\nEquivalentAtomsBegin\r\n"
      "EquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n0\r\nx\r\n";
  const Text Coupled = "ShieldingCouplingBegin\r\nCOUPLING\r\nShieldingCouplingEnd\r\n";
  const OpenRow Rows[] = {
      {"water.nmr", WaterDocument, "D", {}, 1, "WATER.NMR"},
      {"water.MVS", WaterFile, "H", {}, 1, "WATER.MVS"},
      {"water.Zmt", "a\nb\nc\nC\n", "Z", {}, 1, "WATER.ZMT"},
      {"water.txt", WaterDocument, "D", {}, 1, "WATER.TXT"},
      {"water", WaterFile, "H", {}, 1, "WATER"},
      {"rows.dat", "a\nb\nc\nC\n", "Z", {}, 1, "ROWS.DAT"},
      {"coupled.nmr", Results + Coupled, "D", {}, 3, "COUPLED.NMR"},
      {"both.nmr", Results + Change(Coupled, "COUPLING\r\n", "SHIELDING\r\nCOUPLING\r\n"), "D", {}, 2, "BOTH.NMR"},
      {"empty.mvs", "", "H", {"warning PATH is empty."}, 1, "OLD"},
      {"bad.nmr", "nothing\r\n", "D", {"warning Error reading in nothing."}, 1, "OLD"},
      {"broken.nmr",
       Change(WaterDocument, "EquivalentAtomsEnd", "Equivalent"),
       "D",
       {"error Unknown message \"Equivalent\" in the filePATH.",
        "error Unknown message \"LabelledAtomsBegin\" in the filePATH.", "error Unknown message \"0\" in the filePATH.",
        "error Unknown message \"LabelledAtomsEnd\" in the filePATH.", "warning Input past end of file."},
       1,
       "BROKEN.NMR"},
      {"atoms.mvs",
       Change(WaterFile, "atom 1 O O", "atom 1 O Qq"),
       "H",
       {"error Invalid atom element Qq for atom 1 in molecule 1."},
       1,
       "OLD"}};
  for (const OpenRow& R : Rows) {
    ResetProgram();
    Settings.NMRParmPath = ZELVANOR_DATA;
    WorkspaceState& W = Workspace;
    W.NumNMRAtoms = 7;
    W.NumEquivalentSets = 2;
    W.DocumentTitle = "OLD";
    W.AtomTypesChanged = True;
    SetPeaks({{1, 1}});
    UpdateTitle();
    const Text Path = WriteFile(R.Name, R.Content);
    Shown().Files = {Path};
    mnuFileOpen_Click();
    const Text Kind = R.Origin;
    EXPECT_EQ(W.DocumentPath, Kind == "D" ? Path : "") << R.Name;
    EXPECT_EQ(W.HostTextPath, Kind == "H" ? Path : "") << R.Name;
    EXPECT_EQ(W.ZMatrixPath, Kind == "Z" ? Path : "") << R.Name;
    Texts Boxes = R.Boxes;
    for (Text& Box : Boxes) {
      if (Box.find("PATH") != Text::npos) Box = Change(Box, "PATH", Path);
    }
    EXPECT_EQ(Shown().Boxes, Boxes) << R.Name;
    EXPECT_EQ(W.ViewMode, R.View) << R.Name;
    EXPECT_EQ(Main.frmNMR.Caption, Text("Zelvanor - ") + R.Title) << R.Name;
    ExpectValues("NumNMRAtoms=0 SpectraAvailable=0 SpectResultsStale=-1 IsBusy=0", R.Name);
    EXPECT_EQ(W.AtomTypesChanged, ToFlag(Kind == "Z")) << R.Name;  // a Z-matrix is typed at once
    EXPECT_EQ(Main.mnuCompute.Enabled, -1) << R.Name;
    std::vector<MousePointer> Pointers = {MousePointer::Hourglass, MousePointer::Default};
    // A table that is filled shows the hourglass too.
    const bool ShowsTable = R.View == ShieldingView || R.View == CouplingView;
    if (ShowsTable) Pointers.insert(Pointers.end(), {MousePointer::Hourglass, MousePointer::Default});
    EXPECT_EQ(Shown().Pointers, Pointers) << R.Name;
  }
}

TEST_F(FileCommandsTest, SaveAsSuggestsAndAsks) {
  struct Row {
    const char* Title;
    const char* Document;
    const char* Host;
    const char* ZMatrix;
    const char* Suggested;
  };
  const Row Rows[] = {{"", "/x/a.nmr", "", "", "*.NMR"},
                      {"A", "/x/a.nmr", "/x/b.mvs", "", "/x/a.nmr"},
                      {"A", "", "/x/b.mvs", "/x/c.zmt", "/x/b.NMR"},
                      {"A", "", "", "/x/c.zmt", "/x/c.NMR"},
                      {"A", "", "", "", "*.NMR"}};
  WorkspaceState& W = Workspace;
  for (const Row& R : Rows) {
    W.DocumentTitle = R.Title;
    W.DocumentPath = R.Document;
    W.HostTextPath = R.Host;
    W.ZMatrixPath = R.ZMatrix;
    mnuFileSaveAs_Click();
    EXPECT_EQ(Shown().Dialogs.back().FileName, R.Suggested);
    EXPECT_EQ(W.DocumentPath, R.Document) << "cancelled";
  }
  EXPECT_EQ(Shown().Dialogs.back().Title, "Save As");
  EXPECT_EQ(Shown().Dialogs.back().Filter, "Zelvanor Files (*.NMR)|*.NMR");
  EXPECT_TRUE(Shown().Dialogs.back().Save);

  const Text There = WriteFile("there.nmr", "former");
  const Text Lost = TempPath("no-folder/a.nmr");
  W.ZMatrixPath.clear();
  W.DocumentTitle = "A";
  W.DocumentPath = "/x/a.nmr";
  Shown().Files = {There, There, Lost};
  Shown().Answers = {BoxAnswer::Cancel, BoxAnswer::Ok};
  mnuFileSaveAs_Click();
  EXPECT_EQ(ReadBytes(There), "former");
  EXPECT_EQ(W.DocumentPath, "");
  EXPECT_EQ(Shown().RawBoxes[0].Buttons, BoxButtons::OkCancel);
  EXPECT_EQ(Shown().Boxes[0], "question The file already exists.  Do you want to replace this file?");
  mnuFileSave_Click();  // without a path it asks for one
  EXPECT_TRUE(ReadBytes(There).starts_with("NMRSelectionBegin"));
  EXPECT_EQ(Main.frmNMR.Caption, "Zelvanor - THERE.NMR");
  EXPECT_EQ(W.DocumentPath, There);
  mnuFileSaveAs_Click();
  EXPECT_EQ(W.DocumentTitle, "THERE.NMR") << "that save failed";
  const std::size_t Dialogs = Shown().Dialogs.size();
  W.DocumentPath = There;
  W.DocumentDirty = True;
  mnuFileSave_Click();
  EXPECT_EQ(W.DocumentDirty, 0);
  EXPECT_EQ(Shown().Dialogs.size(), Dialogs) << "Save asks no more";
}

}  // namespace
}  // namespace zelvanor::test
