#include "backend/PeakMap.h"

#include <algorithm>
#include <cstdio>

#include "backend/SpectInput.h"
#include "basic/Numbers.h"
#include "files/ExtraSections.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* Begin = "PeakMapBegin";
constexpr const char* End = "PeakMapEnd";
constexpr int WholeShare = 100;  // percent

struct PeakMap {
  std::vector<Long> Ends;
  std::vector<int> Sites;
  std::vector<int> Shares;
};

// The line that Line tells of. Throws a Failure for a word of another form.
void TakeMapLine(PeakMap& To, TextView Line, int NumSites) {
  ForEachWord(Line, [&](TextView Word) {
    const std::size_t Colon = Word.find(':');
    if (Colon == TextView::npos) throw Failure(failures::TypeMismatch);
    const Long Site = StrictLong(Word.substr(0, Colon));
    const Long Share = StrictLong(Word.substr(Colon + 1));
    if (Site < 1 || Site > NumSites || Share < 0 || Share > WholeShare) throw Failure(failures::Subscript);
    To.Sites.push_back(Site);
    To.Shares.push_back(Share);
  });
  To.Ends.push_back(static_cast<Long>(To.Sites.size()));
}

int CountSites(const std::vector<int>& SiteOfAtom) {
  int Count = 0;
  for (const int Site : SiteOfAtom) Count = std::max(Count, Site);
  return Count;
}

void Store(const PeakMap& Map, const std::vector<int>& SiteOfAtom) {
  W.PeakSiteEnd.Assign(Map.Ends);
  W.PeakSite.Assign(Map.Sites);
  W.PeakSiteShare.Assign(Map.Shares);
  W.SiteOfNMRAtom.Assign(SiteOfAtom);
  W.PeakSiteLines = static_cast<Long>(Map.Ends.size());
}

// The numbers behind a word at the head of a line.
std::vector<int> NumbersBehind(TextView Line, TextView Head) {
  std::vector<int> Numbers;
  bool First = true;
  ForEachWord(Line, [&](TextView Word) {
    if (First) {
      if (Word != Head) throw Failure(failures::TypeMismatch);
      First = false;
      return;
    }
    Numbers.push_back(StrictLong(Word));
  });
  return Numbers;
}

// Lines of a map up to its end; Told is how many there have to be.
PeakMap ReadLines(Integer FileNumber, Long Told, int NumSites) {
  PeakMap Map;
  for (Long Line = 0; Line < Told; ++Line) TakeMapLine(Map, LineInput(FileNumber), NumSites);
  return Map;
}

void WriteSection(Integer FileNumber) {
  Text Sites = "sites";
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) Sites += Join(" ", W.SiteOfNMRAtom[Atom]);
  PrintLine(FileNumber, Sites);
  PrintLine(FileNumber, Join("lines ", W.PeakCount));
  for (Long Peak = 0, Place = 0; Peak < W.PeakCount; ++Peak) {
    Text Line;
    for (; Place < W.PeakSiteEnd[Peak]; ++Place) {
      Line += Join(Line.empty() ? "" : " ", W.PeakSite[Place], ":", W.PeakSiteShare[Place]);
    }
    PrintLine(FileNumber, Line);
  }
}

void ReadSection(Integer FileNumber) {
  W.PeakSiteLines = 0;
  const std::vector<int> Sites = NumbersBehind(LineInput(FileNumber), "sites");
  const std::vector<int> Told = NumbersBehind(LineInput(FileNumber), "lines");
  if (static_cast<int>(Sites.size()) != W.NumNMRAtoms || Told.size() != 1 || !IsSet(W.SpectraAvailable) ||
      Told.front() != W.PeakCount) {
    throw Failure("the map of the lines does not belong to the spectrum");
  }
  const PeakMap Map = ReadLines(FileNumber, Told.front(), CountSites(Sites));
  if (!LineInput(FileNumber).starts_with(End)) throw Failure("the map of the lines has no end");
  Store(Map, Sites);
}

bool HasMap() {
  return IsSet(W.SpectraAvailable) && W.PeakSiteLines >= W.PeakCount && W.PeakCount > 0 &&
         W.SiteOfNMRAtom.UpperBound() >= W.NumNMRAtoms;
}

}  // namespace

Text PeakMapPath() {
  const Text& Output = Settings.SpectOutputFile;
  const std::size_t Dot = Output.rfind('.');
  return (Dot == Text::npos ? Output : Output.substr(0, Dot)) + ".map";
}

void RemovePeakMap() {
  W.PeakSiteLines = 0;
  std::remove(PeakMapPath().c_str());
}

void ReadPeakMap() {
  W.PeakSiteLines = 0;
  if (!IsSet(FileExists(PeakMapPath()))) return;
  const Integer File = FreeFile();
  try {
    OpenForInput(PeakMapPath(), File);
    const std::vector<int> Head = NumbersBehind(LineInput(File), "map");
    constexpr int Version = 1;
    if (Head.size() == 2 && Head[0] == Version && Head[1] == W.PeakCount) {
      const std::vector<int> Sites = FindSiteOfAtoms();
      Store(ReadLines(File, W.PeakCount, CountSites(Sites)), Sites);
    }
  } catch (const Failure&) {
    // The spectrum is as good without it.
  }
  CloseFileQuietly(File);
}

void AddPeakMapSection() { AddExtraSection({Begin, End, HasMap, WriteSection, ReadSection}); }

}  // namespace zelvanor
