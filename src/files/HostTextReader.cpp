#include <array>
#include <vector>

#include "basic/Numbers.h"
#include "files/HostText.h"
#include "platform/Paths.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int LeastAtomTokens = 10;
constexpr int FirstNeighbourToken = 12;

// The words of a line as Tokenize counts them, from 1, without the copies: a system has half a million of them.
struct LineWords {
  static constexpr int MostWords = HostLineLength / 2;

  std::array<TextView, MostWords + 1> Words;
  int Count = 0;

  void Split(TextView Line) {
    Count = 0;
    ForEachWord(Line, [this](TextView Word) { Words[static_cast<std::size_t>(++Count)] = Word; });
  }
  // As in Tokens, one empty word stands behind the last one.
  TextView operator[](int Place) const {
    if (Place > Count + 1) throw Failure(failures::Subscript);
    return Place > Count ? TextView() : Words[static_cast<std::size_t>(Place)];
  }
};

// Where the read pass stands.
struct ParseState {
  Text Title;
  LineWords Words;          // of the atom line at hand
  TextView LastLine;        // not in Tokens yet
  Integer Molecule;         // number of the molecule at hand, 1-based, 0 before the first
  Integer AtomsInMolecule;  // read of it so far
  Integer AtomsBefore;      // of the molecules that have ended
};

// Counts on the stored lines as they stand, padding and leading blanks included, down to the spare last one.
void CountAtomsAndMolecules() {
  // More than an Integer holds end the count, and leave no number of atoms that are not there.
  W.NumAtoms = 0;
  W.NumMolecules = 0;
  Integer NumAtoms;
  Integer NumMolecules;
  for (int Line = 0; Line <= W.HostTextLineCount; ++Line) {
    const TextView Stored = W.HostTextLine[Line].View();
    if (Stored.starts_with("atom ")) ++NumAtoms;
    if (Stored.starts_with("mol ")) ++NumMolecules;
  }
  W.NumAtoms = NumAtoms;
  W.NumMolecules = NumMolecules;
}

// Brings Tokens up to date: whoever looks at them after the reading finds the last line's.
void TokenizeLast(ParseState& State) {
  if (State.LastLine.empty()) return;
  LineWork.TokenCount = Tokenize(State.LastLine);
  State.LastLine = {};
}

void ReadNeighbours(const ParseState& State) {
  const int Atom = W.NumAtoms;
  const int Coordination = W.AtomCoordination[Atom];
  for (int Neighbour = 0; Neighbour < Coordination; ++Neighbour) {
    const int Token = FirstNeighbourToken + 2 * Neighbour;
    W.AtomNeighbour(Atom, Neighbour) = StrictInteger(State.Words[Token]) - 1 + State.AtomsBefore;
    W.AtomBondType(Atom, Neighbour) = State.Words[Token + 1];
  }
}

void ReadAtomFields(const ParseState& State) {
  const int Atom = W.NumAtoms;
  const LineWords& Words = State.Words;
  W.AtomNumber[Atom] = StrictInteger(Words[2]);
  W.AtomName[Atom] = Words[3];
  W.AtomElement[Atom] = Words[4];
  W.AtomicNumber[Atom] = ElementNumber(W.AtomElement[Atom].Trimmed());
  W.AtomType[Atom] = Words[5];
  W.AtomFlags[Atom] = Words[6];
  W.AtomCharge[Atom] = StrictSingle(Words[7]);
  W.AtomX[Atom] = StrictSingle(Words[8]);
  W.AtomY[Atom] = StrictSingle(Words[9]);
  W.AtomZ[Atom] = StrictSingle(Words[10]);
  const Integer Coordination = StrictInteger(Words[11]);
  if (Coordination < 0 || Coordination > MaxCoordination) {
    ShowError(Join("The atomic coordination has to be greater than 0 and ",
                   "less than or equal to 12 in the current version ", "of Zelvanor, but it is ", Coordination,
                   " for atom ", State.AtomsInMolecule, " in molecule ", State.Molecule, "."));
    W.AtomCoordination[Atom] = 0;
    return;
  }
  W.AtomCoordination[Atom] = Coordination;
  ReadNeighbours(State);
}

void ReadAtomLine(ParseState& State, TextView Line, int LineIndex) {
  ShowStatus(Join("Reading atom ", W.NumAtoms + 1, "..."));
  ++State.AtomsInMolecule;
  W.AtomMolecule[W.NumAtoms] = State.Molecule;
  W.AtomInMolecule[W.NumAtoms] = State.AtomsInMolecule;
  State.Words.Split(Line);
  State.LastLine = Line;
  if (State.Words.Count < LeastAtomTokens) {
    TokenizeLast(State);
    ShowWarning(Join("Error at line ", Long{LineIndex}, " in file ", State.Title, "."));
    return;
  }
  ReadAtomFields(State);
  ++W.NumAtoms;
}

void ReadViewLine(ParseState& State, TextView Line) {
  TokenizeLast(State);
  LineWork.TokenCount = Tokenize(Line);
  W.HostViewText.clear();
  for (int Token = 2; Token <= LineWork.TokenCount; ++Token) W.HostViewText += LineWork.Tokens[Token] + " ";
}

void ReadForceFieldLine(ParseState& State, TextView Line) {
  TokenizeLast(State);
  LineWork.TokenCount = Tokenize(Line);
  if (LineWork.TokenCount != 2) return;
  const Text Name = LineWork.Tokens[2];
  if (EqualsIgnoringCase(Name, "AMBER") || EqualsIgnoringCase(Name, "KRDO")) return;
  ShowWarning(Join("The current force field is ", Name, " in the file ", State.Title,
                   ".  Some atom types may not be available Zelvanor."));
}

// Without outer blanks, and without the carriage return that stays at the end of a line taken from the host.
TextView TrimLine(TextView Line) {
  Line = TrimBlanks(Line);
  while (Line.ends_with('\r')) Line = TrimBlanks(Line.substr(0, Line.size() - 1));
  return Line;
}

void ReadRecords(ParseState& State) {
  for (int Index = 0; Index <= W.HostTextLineCount; ++Index) {
    FixedText<HostLineLength>& Stored = W.HostTextLine[Index];
    TextView Line = Stored.Trimmed();
    const TextView Trimmed = TrimLine(Line);
    // Most lines stand trimmed already: what differs alone is stored back.
    if (Trimmed.data() != Line.data() || Trimmed.size() != Line.size()) {
      Stored = Text(Trimmed);
      Line = Stored.Trimmed();
    }
    if (Line.starts_with("atom ")) {
      ReadAtomLine(State, Line, Index);
    } else if (Line.starts_with("mol ")) {
      ++State.Molecule;
    } else if (Line.starts_with("endmol ")) {
      W.MoleculeAtomCount[State.Molecule - 1] = State.AtomsInMolecule;
      State.AtomsBefore += State.AtomsInMolecule;
      State.AtomsInMolecule = 0;
    } else if (Line.starts_with("view ")) {
      ReadViewLine(State, Line);
    } else if (Line.starts_with("forcefield ")) {
      ReadForceFieldLine(State, Line);
    }
  }
}

// First is the index of the molecule's first atom; both numbers in the message count within the molecule.
bool CheckAtom(int Molecule, int First, int AtomInMolecule) {
  const int Atom = First + AtomInMolecule;
  const int End = First + W.MoleculeAtomCount[Molecule];
  for (int Place = 0; Place < W.AtomCoordination[Atom]; ++Place) {
    const int Neighbour = W.AtomNeighbour(Atom, Place);
    if (Neighbour >= First && Neighbour < End) continue;
    ShowError(Join("Bad reference to atom ", Long{Neighbour - First + 1}, " from atom ", Long{AtomInMolecule + 1},
                   " in molecule ", Long{Molecule + 1}, "."));
    return false;
  }
  if (W.AtomicNumber[Atom] >= 0 && W.AtomicNumber[Atom] <= LargestElement) return true;
  const Text Element(TrimBlanks(W.AtomElement[Atom].View()));
  W.AtomElement[Atom] = TextView(Element);
  ShowError(Join("Invalid atom element ", Element, " for atom ", Long{AtomInMolecule + 1}, " in molecule ",
                 Long{Molecule + 1}, "."));
  return false;
}

bool CheckAtoms() {
  int First = 0;
  for (int Molecule = 0; Molecule < W.NumMolecules; ++Molecule) {
    const int Count = W.MoleculeAtomCount[Molecule];
    for (int Atom = 0; Atom < Count; ++Atom) {
      if (!CheckAtom(Molecule, First, Atom)) return false;
    }
    First += Count;
  }
  return true;
}

}  // namespace

void AppendHostLine(std::vector<TextView>& Lines, TextView Line) {
  if (Lines.size() == MostHostLines) throw Failure(failures::FileTooLarge);
  Lines.push_back(Line);
}

void StoreHostLines(const std::vector<TextView>& Lines) {
  W.HostTextLineCount = ToLong(static_cast<Double>(Lines.size()));
  W.HostTextLine.Assign(Lines);
}

Flag ReadHostFile(const Text& Path) {
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
  } catch (const Failure& Problem) {
    ShowWarning(Join("Could not open file ", Quoted(Path), ": ", Problem.What, "."));
    return False;
  }
  Flag Result = False;
  try {
    std::vector<TextView> Lines;
    while (!AtEnd(LineWork.FileNumber)) AppendHostLine(Lines, LineInput(LineWork.FileNumber));
    if (Lines.empty()) {
      ShowWarning(Path + " is empty.");
    } else {
      StoreHostLines(Lines);
      Result = True;
    }
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  CloseFileQuietly(LineWork.FileNumber);
  return Result;
}

Flag ParseHostText(const Text& Title) {
  try {
    W.HostViewText.clear();
    CountAtomsAndMolecules();
    if (W.NumAtoms <= 0) {
      ShowWarning(Title + " does not contain any atom.");
      return False;
    }
    AllocateAtomTable(W.NumAtoms);
    W.MoleculeAtomCount.ReDim(W.NumMolecules);
    W.NumAtoms = 0;
    ParseState State;
    State.Title = Title;
    try {
      ReadRecords(State);
    } catch (const Failure&) {
      TokenizeLast(State);
      throw;
    }
    TokenizeLast(State);
    if (!CheckAtoms()) return False;
    ShowStatus(Join("Read ", W.NumAtoms, " atoms."));
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

}  // namespace zelvanor
