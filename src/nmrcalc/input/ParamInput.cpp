#include "nmrcalc/input/ParamInput.h"

#include <map>

#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "nmrcalc/Estimate.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

constexpr int LargestAtomCount = 1000000;
constexpr std::size_t LargestBondCount = 24;
constexpr std::size_t LargestSelection = 5000;  // the coupling table has the square of it

struct SelectedAtom {
  int Molecule = 0;
  int Atom = 0;
  std::size_t Line = 0;
};

std::string_view TrimmedLine(const TextCursor& Place, const std::string& What) {
  return zelvanor::TrimWhite(TakeLine(Place.File, Place.Line, What));
}

bool ReadFlag(const TextCursor& Place, std::string_view Value) {
  if (zelvanor::EqualsIgnoringCase(Value, "Yes")) return true;
  if (!zelvanor::EqualsIgnoringCase(Value, "No")) {
    FailAtLine(Place.File, Place.Line, "the option should be Yes or No, but is \"" + std::string(Value) + "\"");
  }
  return false;
}

// True when the option is one of those that steer a quantum-chemical calculation.
bool ReadQuantumOption(const TextCursor& Place, const std::string& Key, std::string_view Value,
                       QuantumOptions& Options) {
  const auto Whole = [&](int Lowest, int Highest) {
    return WholeNumberAt(Place.File, Place.Line, Value, Lowest, Highest, Key);
  };
  if (Key == "SEMIEMPIRICALMETHOD") {
    Options.Method = Value;
  } else if (Key == "TOTALCHARGE") {
    Options.Charge = Whole(-32768, 32767);
  } else if (Key == "SPINMULTIPLICITY") {
    Options.Multiplicity = Whole(-32768, 32767);
  } else if (Key == "SCFCONVERGENCELIMIT") {
    Options.ConvergenceLimit = NumberAt(Place.File, Place.Line, Value, "SCFConvergenceLimit");
  } else if (Key == "SCFITERATIONLIMIT") {
    Options.IterationLimit = Whole(-32768, 32767);
  } else if (Key == "SCFACCELERATECONVERGENCE") {
    Options.Accelerate = ReadFlag(Place, Value);
  } else if (Key == "MODIFYSLATEREXPONENTS") {
    Options.SpecialExponents = ReadFlag(Place, Value);
  } else if (Key == "COMPUTETHREECENTERTERMS") {
    Options.ThreeCenterTerms = ReadFlag(Place, Value);
  } else if (Key == "INCLUDEDORBITALSFORSECONDROW") {
    Options.DOrbitals = ReadFlag(Place, Value);
  } else {
    return false;
  }
  return true;
}

// Options in any order and case; those that are unknown have no meaning here.
void ReadOption(const TextCursor& Place, std::string_view Text, ParamInput& Input) {
  const std::size_t Equals = Text.find('=');
  if (Equals == std::string_view::npos) {
    FailAtLine(Place.File, Place.Line, "neither an option nor NMRSelectionBegin");
  }
  const std::string Key = zelvanor::UpperCase(zelvanor::TrimWhite(Text.substr(0, Equals)));
  const std::string_view Value = zelvanor::TrimWhite(Text.substr(Equals + 1));
  constexpr int Largest = 2147483647;
  if (Key == "LOGPRINTLEVEL") {
    Input.LogPrintLevel = WholeNumberAt(Place.File, Place.Line, Value, -32768, 32767, "LogPrintLevel");
  } else if (Key == "NMRFREQUENCY") {
    Input.Frequency = WholeNumberAt(Place.File, Place.Line, Value, -Largest, Largest, "NMRFrequency");
  } else if (Key == "CALCULATESHIELDING") {
    Input.WantsShielding = ReadFlag(Place, Value);
  } else if (Key == "CALCULATESHIELDTENSOR") {
    Input.WantsTensor = ReadFlag(Place, Value);
  } else if (Key == "CALCULATECOUPLING") {
    Input.WantsCoupling = ReadFlag(Place, Value);
  } else {
    ReadQuantumOption(Place, Key, Value, Input.Quantum);
  }
}

// The block's count, lines "mol M atom A" and its last line; Place stands on the line behind the opening one.
std::vector<SelectedAtom> ReadSelection(TextCursor& Place, const std::string& Name) {
  const auto Count =
      static_cast<std::size_t>(WholeNumberAt(Place.File, Place.Line, TrimmedLine(Place, "the number of selected atoms"),
                                             0, LargestAtomCount, "the number of selected atoms"));
  ++Place.Line;
  std::vector<SelectedAtom> Selection;
  for (; Selection.size() < Count; ++Place.Line) {
    const auto Tokens = SplitTokens(TakeLine(Place.File, Place.Line, "a selected atom"));
    if (Tokens.size() != 4 || Tokens[0] != "mol" || Tokens[2] != "atom") {
      FailAtLine(Place.File, Place.Line, "a selected atom should read: mol M atom A");
    }
    Selection.push_back(
        {WholeNumberAt(Place.File, Place.Line, Tokens[1], 0, LargestAtomCount, "the molecule of a selected atom"),
         WholeNumberAt(Place.File, Place.Line, Tokens[3], 1, LargestAtomCount, "the number of a selected atom"),
         Place.Line});
  }
  if (TrimmedLine(Place, Name + "End") != Name + "End") {
    FailAtLine(Place.File, Place.Line, "the line should read " + Name + "End");
  }
  ++Place.Line;
  return Selection;
}

BondOrder OrderOf(std::string_view Type) {
  switch (zelvanor::UpperChar(Type.front())) {
    case 'D':
      return BondOrder::Double;
    case 'T':
      return BondOrder::Triple;
    case 'A':
      return BondOrder::Aromatic;
    default:
      return BondOrder::Single;  // hosts have further marks, all of them for weak or single bonds
  }
}

// A bond as the text tells it: neighbours are numbered within the molecule, which may not be complete yet.
struct TextBond {
  std::size_t From = 0;
  int Molecule = 0;
  int To = 0;
  BondOrder Order = BondOrder::Single;
  std::size_t Line = 0;
};

void ReadAtom(const TextCursor& Place, int MoleculeNumber, int InMolecule, Molecule& System,
              std::vector<TextBond>& Bonds) {
  const auto Tokens = SplitTokens(TakeLine(Place.File, Place.Line, "an atom"));
  constexpr std::size_t FirstNeighbour = 11;
  if (Tokens.size() < FirstNeighbour) FailAtLine(Place.File, Place.Line, "an atom has at least 11 tokens");
  Atom Item{
      .AtomicNumber = AtomicNumberOf(Tokens[3].substr(0, 4)), .Molecule = MoleculeNumber, .InMolecule = InMolecule};
  if (Item.AtomicNumber < 0) {
    FailAtLine(Place.File, Place.Line, "unknown element \"" + std::string(Tokens[3].substr(0, 4)) + "\"");
  }
  Item.Charge = zelvanor::PrefixNumber(Tokens[6]);
  for (std::size_t Axis = 0; Axis < 3; ++Axis) {
    Item.Place[Axis] = NumberAt(Place.File, Place.Line, Tokens[7 + Axis], "a coordinate");
  }
  const int Coordination = WholeNumberAt(Place.File, Place.Line, Tokens[10], 0, 12, "the coordination");
  std::size_t Next = FirstNeighbour;
  for (int K = 0; K < Coordination; ++K) {
    if (Next >= Tokens.size()) FailAtLine(Place.File, Place.Line, "the atom's list of neighbours is too short");
    TextBond Bond{.From = System.Atoms.size(), .Molecule = MoleculeNumber, .Line = Place.Line};
    Bond.To = WholeNumberAt(Place.File, Place.Line, Tokens[Next++], 1, LargestAtomCount, "a neighbour");
    // A bond of unknown type is written as no text at all, so the next neighbour's number follows.
    if (Next < Tokens.size() && (Tokens[Next].front() < '0' || Tokens[Next].front() > '9')) {
      Bond.Order = OrderOf(Tokens[Next++]);
    }
    Bonds.push_back(Bond);
  }
  System.Atoms.push_back(std::move(Item));
}

using AtomIndex = std::map<std::pair<int, int>, std::size_t>;  // molecule, atom within it

void ReadSystem(TextCursor& Place, ParamInput& Input, AtomIndex& Index) {
  const int Count = WholeNumberAt(Place.File, Place.Line, TrimmedLine(Place, "the number of atoms"), 1,
                                  LargestAtomCount, "the number of atoms");
  ++Place.Line;
  std::vector<TextBond> Bonds;
  int MoleculeNumber = 0;
  int InMolecule = 0;
  for (;; ++Place.Line) {
    const std::string_view Text = TrimmedLine(Place, "AtomsEnd");
    if (Text == "AtomsEnd") break;
    if (Text.starts_with("mol ")) {
      ++MoleculeNumber;
      InMolecule = 0;
    } else if (Text.starts_with("atom ")) {
      ReadAtom(Place, MoleculeNumber, ++InMolecule, Input.System, Bonds);
      Index.emplace(std::pair{MoleculeNumber, InMolecule}, Input.System.Atoms.size() - 1);
    }
  }
  if (Input.System.Atoms.size() != static_cast<std::size_t>(Count)) {
    FailAtLine(
        Place.File, Place.Line,
        std::to_string(Count) + " atoms are announced, but there are " + std::to_string(Input.System.Atoms.size()));
  }
  for (const TextBond& Bond : Bonds) {
    const auto Other = Index.find({Bond.Molecule, Bond.To});
    if (Other == Index.end()) {
      FailAtLine(Place.File, Bond.Line, "there is no neighbour " + std::to_string(Bond.To) + " in the molecule");
    }
    AddBond(Input.System, Bond.From, Other->second, Bond.Order);
    if (Input.System.Atoms[Other->second].Neighbours.size() > LargestBondCount) {
      FailAtLine(Place.File, Bond.Line, "atom " + std::to_string(Bond.To) + " has too many bonds");
    }
  }
}

}  // namespace

ParamInput ReadParamInput(const std::string& Path, bool NeedsNMRAtoms) {
  TextCursor Place{.File = ReadTextFile(Path)};
  ParamInput Input;
  for (;; ++Place.Line) {
    const std::string_view Text = TrimmedLine(Place, "NMRSelectionBegin");
    if (Text == "NMRSelectionBegin") break;
    if (!Text.empty()) ReadOption(Place, Text, Input);
  }
  const std::size_t SelectionLine = ++Place.Line;
  const auto Selection = ReadSelection(Place, "NMRSelection");
  if (Selection.empty() && NeedsNMRAtoms) FailAtLine(Place.File, SelectionLine, "there is no NMR atom");
  if (Selection.size() > LargestSelection) {
    FailAtLine(Place.File, SelectionLine, "there are more than " + std::to_string(LargestSelection) + " NMR atoms");
  }
  std::vector<SelectedAtom> Quantum;
  if (TrimmedLine(Place, "AtomsBegin") == "QuantumSelectionBegin") {
    ++Place.Line;
    Quantum = ReadSelection(Place, "QuantumSelection");
  }
  if (TrimmedLine(Place, "AtomsBegin") != "AtomsBegin") {
    FailAtLine(Place.File, Place.Line, "the line should read AtomsBegin");
  }
  ++Place.Line;
  AtomIndex Index;
  ReadSystem(Place, Input, Index);
  const auto Find = [&](const std::vector<SelectedAtom>& Items, std::vector<std::size_t>& Atoms) {
    for (const SelectedAtom& Item : Items) {
      const auto Found = Index.find({Item.Molecule, Item.Atom});
      if (Found == Index.end()) FailAtLine(Place.File, Item.Line, "there is no such atom in the system");
      Atoms.push_back(Found->second);
    }
  };
  Find(Selection, Input.NMRAtoms);
  Find(Quantum, Input.QuantumAtoms);
  PerceiveStructure(Input.System);
  return Input;
}

int ReadLogLevel(const std::string& InputPath) {
  TextCursor Place{.File = ReadTextFile(InputPath)};
  ParamInput Input;
  for (; Place.Line < Place.File.Lines.size(); ++Place.Line) {
    const std::string_view Text = zelvanor::TrimWhite(Place.File.Lines[Place.Line]);
    if (Text == "NMRSelectionBegin") break;
    if (zelvanor::UpperCase(Text).starts_with("LOGPRINTLEVEL")) ReadOption(Place, Text, Input);
  }
  return Input.LogPrintLevel;
}

}  // namespace nmrcalc
