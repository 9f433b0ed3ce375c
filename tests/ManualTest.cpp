#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>

#include "Support.h"
#include "platform/Form.h"
#include "settings/Settings.h"
#include "shell/HelpContents.h"
#include "shell/HelpTopics.h"

namespace zelvanor::test {
namespace {

const Text Folder = ZELVANOR_MANUAL;

class ManualTest : public ProgramTest {};

std::vector<HelpEntry> Contents() { return ReadHelpContents(Folder + "/nmr.hlp"); }

std::map<Text, Text> ReadPages() {
  std::map<Text, Text> Pages;
  for (const auto& File : std::filesystem::directory_iterator(Folder)) {
    if (File.path().extension() == ".md") Pages[File.path().filename().string()] = ReadBytes(File.path().string());
  }
  return Pages;
}

std::vector<Text> Matches(const Text& Content, const char* Pattern) {
  std::vector<Text> Found;
  const std::regex Wanted(Pattern);
  for (auto Hit = std::sregex_iterator(Content.begin(), Content.end(), Wanted); Hit != std::sregex_iterator(); ++Hit) {
    Found.push_back((*Hit)[1]);
  }
  return Found;
}

std::set<Text> AnchorsOf(const Text& Content) {
  std::set<Text> Anchors;
  for (const Text& Heading : Matches(Content, "(?:^|\n)#+ ([^\n]*)")) {
    EXPECT_TRUE(Anchors.insert(HelpAnchor(Heading)).second) << "two headings " << Heading;
  }
  return Anchors;
}

// As it is read: without access marks, and with one blank where the menu has two.
Text PlainCaption(TextView Caption) {
  Text Plain;
  for (std::size_t Place = 0; Place < Caption.size(); ++Place) {
    if (Caption[Place] == '&' && ++Place == Caption.size()) break;
    if (Caption[Place] != ' ' || !Plain.ends_with(' ')) Plain += Caption[Place];
  }
  return Text(TrimBlanks(Plain));
}

TEST_F(ManualTest, ContentsList) {
  const Text Good =
      "; contents\r\n\r\n1 index.md 1 The manual\r\n0\t-\t1\tTables\r\n12 table.md 2 The  table\r\n0 b.md 1 B\r\n";
  const std::vector<HelpEntry> Entries = ReadHelpContents(WriteFile("good.hlp", Good));
  ASSERT_EQ(Entries.size(), 4U);
  EXPECT_EQ(Entries[0].Title, "The manual");
  EXPECT_EQ(Entries[1].Page, "");
  EXPECT_EQ(Entries[2].Level, 2);
  EXPECT_EQ(FindHelpEntry(Entries, 12)->Page, "table.md");
  EXPECT_EQ(FindHelpEntry(Entries, 13), nullptr);
  EXPECT_EQ(FindHelpEntry(Entries, 0), nullptr);
  struct Row {
    const char* Lines;
    const char* Problem;
  };
  for (const Row& R : {Row{"x index.md 1 A", "bad.hlp, line 1: Type mismatch"},
                       {"1 index.md 1", "bad.hlp, line 1: the title is missing"},
                       {"1 index.md", "bad.hlp, line 1: Type mismatch"},
                       {"1 index.md 2 A", "bad.hlp, line 1: bad level"},
                       {"1 index.md 0 A", "bad.hlp, line 1: bad level"},
                       {"1 a.md 1 A\n2 b.md 3 B", "bad.hlp, line 2: bad level"},
                       {"1 ../a.md 1 A", "bad.hlp, line 1: a page outside the manual"},
                       {"-1 a.md 1 A", "bad.hlp, line 1: bad number"},
                       {"5 - 1 A", "bad.hlp, line 1: bad number"},
                       {"1 a.md 1 A\n\n1 b.md 1 B", "bad.hlp, line 3: the number stands twice"},
                       {"1 a.md 1 A\n2 a.md 1 B", "bad.hlp, line 2: the page stands twice"},
                       {"99999 a.md 1 A", "bad.hlp, line 1: Overflow"}}) {
    const Text Path = WriteFile("bad.hlp", R.Lines);
    EXPECT_EQ(FailureOf([&] { ReadHelpContents(Path); }), R.Problem) << R.Lines;
  }
  EXPECT_EQ(FailureOf([] { ReadHelpContents(TempPath("none.hlp")); }), failures::FileNotFound);
}

TEST_F(ManualTest, EveryFormAndViewHasItsPage) {
  const std::vector<HelpEntry> Entries = Contents();
  for (const HelpTopic& Row : HelpTopics()) EXPECT_NE(FindForm(Row.Form), nullptr) << Row.Form;
  for (const Form* Each : AllForms()) {
    EXPECT_NE(Each->HelpContext, 0) << Each->Name << " has no row in shell/HelpTopics.cpp";
    EXPECT_NE(FindHelpEntry(Entries, Each->HelpContext), nullptr) << Each->Name << " has no page";
  }
  for (const int Number : {ContentsHelp, UsingHelp, MessagesHelp, TensorHelp})
    EXPECT_NE(FindHelpEntry(Entries, Number), nullptr);

  Main.HelpFile = "/x/nmr.hlp";
  struct Row {
    Integer View;
    Flag Molecule;
    int Context;
  };
  for (const Row& R : {Row{MoleculeView, 0, MainWindowHelp},
                       {MoleculeView, -1, MoleculeHelp},
                       {ShieldingView, -1, ShieldingHelp},
                       {CouplingView, 0, CouplingHelp},
                       {SpectrumViewMode, -1, SpectrumHelp}}) {
    Workspace.ViewMode = R.View;
    Workspace.MoleculeLoaded = R.Molecule;
    Shown().Helps.clear();
    ShowContextHelp(Main.frmNMR);
    EXPECT_EQ(Shown().Helps, Texts{Join("/x/nmr.hlp 1 ", R.Context)}) << "view " << int(R.View);
    EXPECT_NE(FindHelpEntry(Entries, R.Context), nullptr) << R.Context;
  }
  EXPECT_EQ(HelpContextOf(*FindForm("frmRefer")), FindForm("frmRefer")->HelpContext);
}

TEST_F(ManualTest, PagesAndListAgree) {
  std::set<Text> Listed;
  for (const HelpEntry& Entry : Contents()) {
    if (!Entry.Page.empty()) Listed.insert(Entry.Page);
  }
  std::set<Text> There;
  for (const auto& [Page, Content] : ReadPages()) {
    There.insert(Page);
    EXPECT_TRUE(Content.starts_with("# ")) << Page << " has no title";
  }
  EXPECT_EQ(There, Listed);
}

TEST_F(ManualTest, LinksAndPicturesLeadSomewhere) {
  const std::map<Text, Text> Pages = ReadPages();
  std::map<Text, std::set<Text>> Anchors;
  for (const auto& [Page, Content] : Pages) Anchors[Page] = AnchorsOf(Content);
  std::set<Text> Pictures;
  for (const auto& [Page, Content] : Pages) {
    for (const Text& Target : Matches(Content, "\\]\\(([^)]*)\\)")) {
      if (Target.starts_with("https://")) continue;
      if (Target.starts_with("images/")) {
        EXPECT_TRUE(Exists(Folder + "/" + Target)) << Page << ": " << Target;
        Pictures.insert(Target);
        continue;
      }
      const std::size_t Mark = Target.find('#');
      const Text Other = Mark == 0 ? Page : Target.substr(0, Mark);
      ASSERT_TRUE(Pages.contains(Other)) << Page << ": " << Target;
      EXPECT_TRUE(Mark == Text::npos || Anchors[Other].contains(Target.substr(Mark + 1))) << Page << ": " << Target;
    }
  }
  constexpr std::uintmax_t LargestPicture = 60000;  // bytes
  for (const auto& File : std::filesystem::directory_iterator(Folder + "/images")) {
    const Text Name = "images/" + File.path().filename().string();
    EXPECT_TRUE(Pictures.contains(Name)) << Name << " is on no page";
    EXPECT_LT(File.file_size(), LargestPicture) << Name;
  }
}

TEST_F(ManualTest, KnowsEverySettingMenuCommandAndControl) {
  Text All;
  const std::map<Text, Text> Pages = ReadPages();
  for (const auto& [Page, Content] : Pages) All += Content;
  for (const Text& Key : SettingKeys()) {
    EXPECT_NE(Pages.at("settings.md").find("| `" + Key + "` |"), Text::npos) << Key;
  }
  for (const MenuRow& Row : MenuRows()) {
    const Text Caption = PlainCaption(Row.Caption);
    const bool IsCommand = Caption != "-" && Row.Parent != nullptr;
    if (!IsCommand) continue;
    const Text& Page = Pages.at("main-window.md");
    const bool Told = Page.find("**" + Caption + "**") != Text::npos || Page.find(Caption + "**") != Text::npos ||
                      Page.find("**" + Caption + " >") != Text::npos;
    EXPECT_TRUE(Told) << Caption;
  }
  for (const Form* Each : AllForms()) {
    if (Each == &Main.frmNMR) continue;
    for (const Control* Item : Each->Controls) {
      if (Item->Kind != ControlKind::CommandButton) continue;
      const Text Caption = PlainCaption(static_cast<const CommandButton*>(Item)->Caption);
      const Text& Page = Pages.at(FindHelpEntry(Contents(), Each->HelpContext)->Page);
      const bool Usual = Caption == "OK" || Caption == "Cancel";
      EXPECT_TRUE(Usual || Page.find(Caption) != Text::npos) << Each->Name << ": " << Caption;
    }
  }
}

}  // namespace
}  // namespace zelvanor::test
