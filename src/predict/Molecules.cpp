#include "predict/Molecules.h"

#include <unistd.h>

#include <cstdio>

#include "basic/TextTools.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"

namespace zelvanor::predict {

namespace {

constexpr std::size_t LongestName = 80;

// Documents, host texts and Z-matrices are opened by the program itself, as one molecule each.
bool IsOwnFile(const Text& Path) {
  const Text Ending = EndingOf(Path);
  return Ending == ".NMR" || Ending == ".MVS" || Ending == ".ZMT";
}

Text BaseName(const Text& Path) {
  const Text Title(FileTitleOf(Path));
  const std::size_t Dot = Title.rfind('.');
  return Dot == Text::npos || Dot == 0 ? Title : Title.substr(0, Dot);
}

Text WantedName(const Walk& All, const Molecule& One) {
  if (!One.Record.Title.empty()) return One.Record.Title;
  if (All.Path.empty() || All.Path == "-") return One.Record.Content.substr(0, One.Record.Content.find('\n'));
  return BaseName(All.Path) + (All.Several ? "-" + std::to_string(One.Record.Number) : Text());
}

void Miss(Walk& All, const Text& Input, const Text& Reason) {
  std::fprintf(stderr, "zelvanor-predict: %s: %s\n", Input.c_str(), Reason.c_str());
  All.AnyMissing = true;
}

bool IsWanted(const Options& Given, Long Number) {
  return Number >= Given.FirstRecord && (Given.LastRecord == 0 || Number <= Given.LastRecord);
}

// Opens the next input. True when a molecule comes from it at once.
bool OpenNext(Walk& All, Molecule& First) {
  const Input& One = All.Given.Inputs[All.Next++];
  All.Path = One.Path;
  All.Several = false;
  First = {};
  First.Input = One.Smiles.empty() ? One.Path : One.Smiles;
  First.Record.Number = 1;
  if (!One.Smiles.empty()) {
    First.Kind = convert::FileKind::Smiles;
    First.Record.Content = One.Smiles;
    return true;
  }
  if (IsOwnFile(One.Path)) {
    if (const Text Problem = WhyUnreadable(One.Path); !Problem.empty()) {
      Miss(All, One.Path, Problem);
      return false;
    }
    First.Path = One.Path;
    return IsWanted(All.Given, 1);
  }
  try {
    All.Source = std::make_unique<convert::RecordSource>();
    convert::OpenRecords(*All.Source, One.Path);
  } catch (const Failure& Problem) {
    All.Source.reset();
    Miss(All, One.Path, Problem.What);
  }
  return false;
}

bool ReadRecord(Walk& All, Molecule& Next) {
  Next = {};
  Next.Input = All.Path;
  if (!convert::NextRecord(*All.Source, Next.Record)) return false;
  Next.Kind = All.Source->Kind;
  return true;
}

// From the open file: one record is read ahead, for it tells whether there are several.
bool FromFile(Walk& All, Molecule& Next) {
  for (;;) {
    if (All.HasAhead) {
      Next = std::move(All.Ahead);
    } else if (!ReadRecord(All, Next)) {
      if (All.Source->Given == 0) Miss(All, All.Path, "there is no molecule in it");
      return false;
    }
    All.HasAhead = ReadRecord(All, All.Ahead);
    All.Several = All.Several || All.HasAhead;
    if (IsWanted(All.Given, Next.Record.Number)) return true;
    if (!All.HasAhead) return false;
  }
}

}  // namespace

Text GiveName(Names& All, const Text& Wanted) {
  Text Name;
  for (const char C : Wanted) {
    // One "_" for a character of several bytes.
    if ((static_cast<unsigned char>(C) & 0xC0U) == 0x80U) continue;
    if (Name.size() == LongestName) break;
    const char Upper = UpperChar(C);
    const bool Stays = (Upper >= 'A' && Upper <= 'Z') || (C >= '0' && C <= '9') || C == '-' || C == '_' || C == '.';
    Name += Stays ? C : '_';
  }
  Text Free = Name;
  for (int Number = 2; !All.Given.insert(Free).second; ++Number) Free = Name + "-" + std::to_string(Number);
  return Free;
}

bool NextMolecule(Walk& All, Molecule& Next) {
  for (;;) {
    bool Found = false;
    if (All.Source) {
      Found = FromFile(All, Next);
      if (!Found) All.Source.reset();
    } else if (All.Next == All.Given.Inputs.size()) {
      return false;
    } else {
      Found = OpenNext(All, Next);
    }
    if (!Found) continue;
    Next.Place = ++All.Count;
    Next.Name = GiveName(All.Used, WantedName(All, Next));
    return true;
  }
}

bool AnyReadable(const Options& Given) {
  for (const Input& One : Given.Inputs) {
    if (!One.Smiles.empty() || One.Path == "-") return true;
    if (access(One.Path.c_str(), R_OK) != 0) continue;
    if (IsOwnFile(One.Path)) return WhyUnreadable(One.Path).empty();
    try {
      convert::RecordSource Source;
      convert::OpenRecords(Source, One.Path);
      return true;
    } catch (const Failure&) {
      // the next one may do
    }
  }
  return false;
}

}  // namespace zelvanor::predict
