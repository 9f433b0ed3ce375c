#include "shell/HelpContents.h"

#include <algorithm>
#include <filesystem>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

constexpr int DeepestLevel = 3;

// The word that stands at the head of the line, which goes on behind it.
TextView TakeWord(TextView& Line) {
  Line = TrimWhite(Line);
  const TextView Word = Line.substr(0, Line.find_first_of(Separators));
  Line.remove_prefix(Word.size());
  return Word;
}

HelpEntry ReadEntry(TextView Line) {
  HelpEntry Entry;
  Entry.Context = StrictInteger(TakeWord(Line));
  const TextView Page = TakeWord(Line);
  if (Page != "-") Entry.Page = Page;
  Entry.Level = StrictInteger(TakeWord(Line));
  Entry.Title = TrimWhite(Line);
  return Entry;
}

void CheckEntry(const HelpEntry& Entry, const std::vector<HelpEntry>& Before) {
  const int Above = Before.empty() ? 0 : Before.back().Level;
  if (Entry.Title.empty()) throw Failure("the title is missing");
  if (Entry.Level < 1 || Entry.Level > std::min(Above + 1, DeepestLevel)) throw Failure("bad level");
  if (FileTitleOf(Entry.Page) != Entry.Page) throw Failure("a page outside the manual");
  if (Entry.Context < 0 || (Entry.Context != 0 && Entry.Page.empty())) throw Failure("bad number");
  for (const HelpEntry& Other : Before) {
    if (Entry.Context != 0 && Other.Context == Entry.Context) throw Failure("the number stands twice");
    if (!Entry.Page.empty() && Other.Page == Entry.Page) throw Failure("the page stands twice");
  }
}

std::vector<HelpEntry> ReadEntries(Integer FileNumber, TextView FileTitle) {
  std::vector<HelpEntry> Entries;
  for (int LineNumber = 1; !AtEnd(FileNumber); ++LineNumber) {
    const TextView Line = TrimWhite(LineInput(FileNumber));
    if (Line.empty() || Line.front() == ';') continue;
    try {
      HelpEntry Entry = ReadEntry(Line);
      CheckEntry(Entry, Entries);
      Entries.push_back(std::move(Entry));
    } catch (const Failure& Problem) {
      throw Failure(Join(FileTitle, ", line ", LineNumber, ": ", Problem.What));
    }
  }
  return Entries;
}

}  // namespace

std::vector<HelpEntry> ReadHelpContents(const Text& HelpFile) {
  const Integer FileNumber = FreeFile();
  OpenForInput(HelpFile, FileNumber);
  try {
    std::vector<HelpEntry> Entries = ReadEntries(FileNumber, FileTitleOf(HelpFile));
    CloseFile(FileNumber);
    return Entries;
  } catch (const Failure&) {
    CloseFileQuietly(FileNumber);
    throw;
  }
}

const HelpEntry* FindHelpEntry(const std::vector<HelpEntry>& Entries, int Context) {
  const auto Found = std::find_if(Entries.begin(), Entries.end(),
                                  [Context](const HelpEntry& E) { return Context != 0 && E.Context == Context; });
  return Found == Entries.end() ? nullptr : &*Found;
}

Text HelpFolder(const Text& HelpFile) {
  std::error_code Ignored;
  const std::filesystem::path Real = std::filesystem::weakly_canonical(HelpFile, Ignored);
  return (Real.empty() ? std::filesystem::path(HelpFile) : Real).parent_path().string();
}

Text HelpAnchor(TextView Heading) {
  Text Anchor;
  for (const char C : TrimWhite(Heading)) {
    const char Upper = UpperChar(C);
    if (C == ' ') {
      Anchor += '-';
    } else if ((Upper >= 'A' && Upper <= 'Z') || (C >= '0' && C <= '9') || C == '-' || C == '_') {
      Anchor += static_cast<char>(Upper >= 'A' && Upper <= 'Z' ? Upper + ('a' - 'A') : C);
    }
  }
  return Anchor;
}

}  // namespace zelvanor
