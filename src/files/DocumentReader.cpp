#include "files/DocumentReader.h"

#include <algorithm>
#include <vector>

#include "basic/Numbers.h"
#include "files/DocumentFormat.h"
#include "files/ExtraSections.h"
#include "files/HostText.h"
#include "files/OptionLines.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int EntryTokens = 4;
constexpr int OptionTokens = 3;
// What stands in NMRAtomicNumber where a line is too short.
constexpr int DefaultElement = 8;

// A selection can't be taken in: its message has been shown.
struct SelectionRefused {};

// The atom number of an entry line "mol m atom a" that Tokenize has split.
Integer ReadEntry(const char* SelectionName) {
  const Integer Molecule = StrictInteger(LineWork.Tokens[2]);
  Integer Number = StrictInteger(LineWork.Tokens[4]);
  if (Molecule > W.NumMolecules + 1) {
    ShowWarning(Join("Molecular index ", Molecule, " in the ", SelectionName, " atom selection is invalid."));
    throw SelectionRefused();
  }
  for (int Before = 0; Before <= Molecule - 2; ++Before) Number += W.MoleculeAtomCount[Before];
  return Number;
}

// Count entry lines and the end line, which is not looked at. A line that is too short leaves its entry at 0.
void ReadEntries(Array<Integer>& Entries, int Count, const char* SelectionName, Integer FileNumber) {
  for (int Entry = 0; Entry < Count; ++Entry) {
    LineWork.TokenCount = Tokenize(LineInput(FileNumber));
    if (LineWork.TokenCount >= EntryTokens) Entries[Entry] = ReadEntry(SelectionName);
  }
  LineInput(FileNumber);
}

Integer ReadCount(Integer FileNumber) { return ToInteger(PrefixNumber(LineInput(FileNumber))); }

void ReadNMRSelection(Integer FileNumber) {
  W.NumNMRAtoms = ReadCount(FileNumber);
  const int Count = std::max<int>(W.NumNMRAtoms, 0);
  W.NMRAtom.ReDim(Count);
  W.NMRAtomicNumber.ReDim(Count);
  if (W.NumAtoms < Count) ExtendForResults();
  ReadEntries(W.NMRAtom, Count, "NMR", FileNumber);
}

void ReadAtomSelection(Integer& Count, Array<Integer>& Entries, Integer FileNumber) {
  Count = ReadCount(FileNumber);
  Entries.ReDim(std::max<int>(Count, 0));
  ReadEntries(Entries, Count, "quantum", FileNumber);
}

void ReadEquivalentSets(const Text& Path, Integer FileNumber) {
  Integer Set = 0;
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(document::EquivalentEnd)) return;
    if (Line.starts_with(document::EquivalentSet)) {
      ++Set;
      W.NumEquivalentSets = Set;
    } else if (Line.starts_with("mol")) {
      LineWork.TokenCount = Tokenize(Line);
      if (LineWork.TokenCount < EntryTokens) continue;
      const Integer Number = ReadEntry("equivalent");
      Integer& Size = W.EquivalentSetSize[Set - 1];
      W.EquivalentAtom(Set - 1, Size) = Number;
      ++Size;
    } else {
      ShowError(Join("Unknown message ", Quoted(Line), " in the file", Path, "."));
    }
  }
}

// Opens the file again, so that the next line is its first one.
void Rewind(const Text& Path) {
  CloseFile(LineWork.FileNumber);
  OpenForInput(Path, LineWork.FileNumber);
}

// The molecule block, if the file starts with one. False: leave with failure, the message has been shown.
bool ReadMolecule(const Text& Path) {
  if (TrimBlanks(LineInput(LineWork.FileNumber)) != document::BeginHostBlock) {
    Rewind(Path);
    return true;
  }
  W.MoleculeLoaded = True;
  if (IsSet(ReadHostBlock(LineWork.FileNumber)) && IsSet(ParseHostText(Path))) return true;
  W.MoleculeLoaded = False;
  return false;
}

// The section that this line begins, when it is one that a room has added.
Flag ReadExtraSection(TextView Line) {
  for (const ExtraSection& Section : ExtraSections()) {
    if (!Line.starts_with(Section.Begin)) continue;
    try {
      Section.Read(LineWork.FileNumber);
    } catch (const Failure& Problem) {
      WarnOfFailure(Problem);
      return False;
    }
  }
  return True;
}

// The sections behind the selections, in any order, to the end of the file.
bool ReadSections(const Text& Path) {
  while (!AtEnd(LineWork.FileNumber)) {
    const TextView Line = LineInput(LineWork.FileNumber);
    Flag Read = True;
    if (Line.starts_with(document::OptionsBegin)) {
      Read = ReadOptions(Path, LineWork.FileNumber);
    } else if (Line.starts_with(document::AtomicNumbersBegin)) {
      Read = ReadNMRAtomicNumbers(Path, LineWork.FileNumber);
    } else if (Line.starts_with(document::ResultsBegin)) {
      Read = ReadShieldingCoupling(Path, LineWork.FileNumber);
    } else if (Line.starts_with(document::SpectraBegin)) {
      Read = ReadSpectra(Path, LineWork.FileNumber);
    } else {
      Read = ReadExtraSection(Line);
    }
    if (!IsSet(Read)) return false;
  }
  return true;
}

bool ReadOpenDocument(const Text& Path) {
  if (!ReadMolecule(Path)) return false;
  if (!IsSet(ReadSelections(Path, LineWork.FileNumber))) return false;
  if (W.NumAtoms != 0 && W.NumNMRAtoms != 0) W.NMRAtomsValid = True;
  return ReadSections(Path);
}

}  // namespace

void WarnOfLine(TextView Line, const Text& Path) {
  ShowWarning(Join("Error reading in option ", Quoted(Line), " from file ", Path, "."));
}

Flag ReadHostBlock(Integer FileNumber) {
  try {
    std::vector<TextView> Lines;
    for (;;) {
      const TextView Line = LineInput(FileNumber);
      if (EqualsIgnoringCase(TrimBlanks(Line), document::EndHostBlock)) break;
      AppendHostLine(Lines, Line);
    }
    StoreHostLines(Lines);
    return True;
  } catch (const Failure& Problem) {
    ShowError(Problem.What);
    return False;
  }
}

Flag ReadSelections(const Text& Path, Integer FileNumber) {
  constexpr int NumSections = 4;
  try {
    for (int Section = 0; Section < NumSections; ++Section) {
      const TextView Line = LineInput(FileNumber);
      if (Line.starts_with(document::NMRBegin)) {
        ReadNMRSelection(FileNumber);
      } else if (Line.starts_with(document::QuantumBegin)) {
        ReadAtomSelection(W.NumQuantumAtoms, W.QuantumAtom, FileNumber);
      } else if (Line.starts_with(document::LabelledBegin)) {
        ReadAtomSelection(W.NumLabelledAtoms, W.LabelledAtom, FileNumber);
      } else if (Line.starts_with(document::EquivalentBegin)) {
        ReadEquivalentSets(Path, FileNumber);
      } else {
        ShowWarning(Join("Error reading in ", Line, "."));
        return False;
      }
    }
    return True;
  } catch (const SelectionRefused&) {
    return False;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

Flag ReadOptions(const Text& Path, Integer FileNumber) {
  try {
    for (;;) {
      const TextView Line = LineInput(FileNumber);
      if (Line.starts_with(document::OptionsEnd)) return True;
      if (Line.starts_with(document::OptionsBegin)) continue;
      LineWork.TokenCount = Tokenize(Line);
      if (LineWork.TokenCount < OptionTokens) {
        WarnOfLine(Line, Path);
      } else if (!TakeOption(LineWork.Tokens[1], LineWork.Tokens[3])) {
        ShowWarning(Join("Unknown option ", Quoted(Line), " from file ", Path));
      }
    }
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

namespace {

void TakeAtomicNumbers(TextView Line, const Text& Path) {
  LineWork.TokenCount = Tokenize(Line);
  if (LineWork.TokenCount != W.NumNMRAtoms) WarnOfLine(Line, Path);
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) W.NMRAtomicNumber[Atom] = DefaultElement;
  const int Count = std::min<int>(LineWork.TokenCount, W.NumNMRAtoms);
  for (int Atom = 0; Atom < Count; ++Atom) W.NMRAtomicNumber[Atom] = StrictInteger(LineWork.Tokens[Atom + 1]);
}

// Fills the placeholder molecule of a document with fewer atoms than NMR atoms.
void CompletePlaceholders() {
  W.MoleculeAtomCount[W.NumMolecules] = W.NumNMRAtoms - W.NumAtoms;
  for (int Atom = W.NumAtoms; Atom < W.NumNMRAtoms; ++Atom) {
    const Text Symbol = ElementSymbol(W.NMRAtomicNumber[Atom]);
    W.AtomType[Atom] = TextView(Symbol);
    W.AtomElement[Atom] = TextView(Symbol);
    W.AtomInMolecule[Atom] = Atom - W.NumAtoms + 1;
    W.AtomMolecule[Atom] = W.NumMolecules + 1;
  }
}

}  // namespace

Flag ReadNMRAtomicNumbers(const Text& Path, Integer FileNumber) {
  try {
    for (;;) {
      const TextView Line = LineInput(FileNumber);
      if (Line.starts_with(document::AtomicNumbersEnd)) break;
      TakeAtomicNumbers(Line, Path);
    }
    if (W.NumAtoms < W.NumNMRAtoms) CompletePlaceholders();
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

Flag ReadDocument(const Text& Path) {
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
  Flag Result = False;
  try {
    W.NMRAtomsValid = False;
    Result = ToFlag(ReadOpenDocument(Path));
  } catch (const Failure&) {
    ShowWarning(Join("Error ocurred when reading the information from file ", Path, "."));
  }
  CloseFileQuietly(LineWork.FileNumber);
  return Result;
}

}  // namespace zelvanor
