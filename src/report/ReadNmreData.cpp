#include "report/ReadNmreData.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "atomsets/AtomSetChecks.h"
#include "basic/Numbers.h"
#include "files/Converter.h"
#include "files/FileCommands.h"
#include "measured/MeasuredTrace.h"
#include "platform/TextFiles.h"
#include "report/AssignedShifts.h"
#include "shell/Frame.h"
#include "spectrum/PeakLists.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

struct Coupled {
  Text First, Second;  // labels
  Double Hz = 0;
};

struct Assigned {
  std::map<Text, std::set<int>> Atoms;  // by label; numbers
  std::map<int, Double> Shifts;         // ppm, by atom number
  std::vector<Coupled> Couplings;
  Text Solvent;
  std::map<Text, Double> MHz;  // by nucleus, as "1H"
};

// Where the header of a field begins: its tag in a line that starts with ">", since a value may hold the same letters.
std::size_t FindField(const Text& Record, const Text& Name) {
  const Text Tag = "<NMREDATA_" + Name + ">";
  for (std::size_t Place = Record.find(Tag); Place != Text::npos; Place = Record.find(Tag, Place + 1)) {
    const std::size_t Start = Record.rfind('\n', Place) + 1;  // 0 in the first line
    if (Start < Place && Record[Start] == '>') return Place;
  }
  return Text::npos;
}

// The entries of a field: its lines, cut at commas, without what stands behind ";" and the backslash at their ends.
std::vector<std::vector<Text>> EntriesOf(const Text& Record, const Text& Name) {
  std::vector<std::vector<Text>> Entries;
  std::size_t Place = FindField(Record, Name);
  if (Place == Text::npos) return Entries;
  Place = Record.find('\n', Place);
  while (Place != Text::npos && ++Place < Record.size()) {
    const std::size_t End = std::min(Record.find('\n', Place), Record.size());
    Text Line(TrimWhite(TextView(Record).substr(Place, End - Place)));
    if (Line.empty() || Line.starts_with(">")) break;
    Line.resize(std::min(Line.find_first_of(";\\"), Line.size()));
    std::vector<Text> Cells;
    for (std::size_t From = 0; From <= Line.size();) {
      const std::size_t Comma = std::min(Line.find(',', From), Line.size());
      Cells.emplace_back(TrimWhite(TextView(Line).substr(From, Comma - From)));
      From = Comma + 1;
    }
    Entries.push_back(std::move(Cells));
    Place = End;
  }
  return Entries;
}

// "5" is atom 5, "H5" the hydrogens on it, which the table may leave out.
void AddAtoms(std::set<int>& To, const Text& Cell) {
  const bool OnIt = Cell.starts_with("H");
  const Long Number = PrefixIndex(TextView(Cell).substr(OnIt ? 1 : 0));
  if (Number < 1 || Number > W.NumAtoms) throw Failure("the assignment names an atom that is not there: " + Cell);
  const int Atom = static_cast<int>(Number) - 1;
  if (!OnIt) To.insert(Atom + 1);
  for (int K = 0; OnIt && K < W.AtomCoordination[Atom]; ++K) {
    const int Other = W.AtomNeighbour(Atom, K);
    if (W.AtomicNumber[Other] == 1) To.insert(Other + 1);
  }
}

Assigned ReadAssigned(const Text& Record) {
  Assigned All;
  for (const std::vector<Text>& Cells : EntriesOf(Record, "ASSIGNMENT")) {
    if (Cells.size() < 3) continue;
    std::set<int>& Atoms = All.Atoms[Cells[0]];
    for (std::size_t K = 2; K < Cells.size(); ++K) AddAtoms(Atoms, Cells[K]);
    const Double Shift = StrictNumber(Cells[1]);
    for (const int Atom : Atoms) All.Shifts[Atom] = Shift;
  }
  for (const std::vector<Text>& Cells : EntriesOf(Record, "J")) {
    if (Cells.size() > 2) All.Couplings.push_back({Cells[0], Cells[1], StrictNumber(Cells[2])});
  }
  for (const std::vector<Text>& Cells : EntriesOf(Record, "SOLVENT")) {
    if (All.Solvent.empty()) All.Solvent = Cells.front();
  }
  for (const char* const Nucleus : {"1H", "13C", "15N", "17O", "19F", "31P"}) {
    for (const std::vector<Text>& Cells : EntriesOf(Record, Join("1D_", Nucleus))) {
      constexpr TextView Key = "Larmor=";
      if (Cells.front().starts_with(Key)) All.MHz[Nucleus] = PrefixNumber(TextView(Cells.front()).substr(Key.size()));
    }
  }
  if (All.Shifts.empty()) throw Failure("its assignment is empty");
  return All;
}

// What is observed: protons where there are any, else the first element of the list of nuclei that is there.
void ChooseNucleus() {
  int Least = NumReferenceEntries;
  std::vector<int> Labels;
  for (int Entry = 0; Entry < W.NumNMRAtoms; ++Entry) {
    const int Nucleus = ReferenceEntryOf(W.NMRAtomicNumber[Entry]);
    Least = std::min(Least, Nucleus);
    // Carbon, nitrogen and oxygen have a spin as rare isotopes alone.
    if (Nucleus >= 1 && Nucleus <= 3) Labels.push_back(W.NMRAtom[Entry]);
  }
  W.SpectraType = Least < NumReferenceEntries - 1 ? Least : 0;
  W.NumLabelledAtoms = static_cast<int>(Labels.size());
  W.LabelledAtom.ReDim(W.NumLabelledAtoms);
  for (int K = 0; K < W.NumLabelledAtoms; ++K) W.LabelledAtom[K] = Labels[static_cast<std::size_t>(K)];
}

void TakeAssigned(const Assigned& All) {
  WorkList Work;
  Work.Count = static_cast<int>(All.Shifts.size());
  Work.Atom.ReDim(Work.Count);
  std::map<int, int> EntryOf;
  for (const auto& [Atom, Shift] : All.Shifts) {
    const int Entry = static_cast<int>(EntryOf.size());
    EntryOf[Atom] = Entry;
    Work.Atom[Entry] = Atom;
  }
  if (!TakeNMRAtoms(Work)) return;
  AllocateResults(W.NumNMRAtoms);
  for (const auto& [Atom, Shift] : All.Shifts) {
    const int Entry = EntryOf[Atom];
    const Double Reference = W.ReferenceShielding[ReferenceEntryOf(W.NMRAtomicNumber[Entry])];
    W.Shielding[Entry] = ToSingle(Reference - Shift);
  }
  for (const Coupled& Each : All.Couplings) {
    const auto First = All.Atoms.find(Each.First);
    const auto Second = All.Atoms.find(Each.Second);
    if (First == All.Atoms.end() || Second == All.Atoms.end()) continue;
    for (const int A : First->second) {
      for (const int B : Second->second) {
        if (A == B) continue;
        W.Coupling(EntryOf[A], EntryOf[B]) = W.Coupling(EntryOf[B], EntryOf[A]) = ToSingle(Each.Hz);
      }
    }
  }
  StoreAssignedShifts(All.Shifts);
  W.MeasuredSolvent = OneLine(All.Solvent);
  ChooseNucleus();
  if (const auto Told = All.MHz.find(ObservedNucleus()); Told != All.MHz.end()) {
    constexpr Double HighestField = 2000.0;  // MHz
    if (Told->second >= 1.0 && Told->second < HighestField) W.NMRFrequency = ToLong(Told->second);
  }
  W.ShieldingAvailable = W.CouplingAvailable = True;
  W.ParamResultsStale = False;
  W.SpectResultsStale = W.DocumentDirty = True;
  ComputeChemicalShifts();
}

// The first record with an assignment and its number; 0 for none.
Long FindRecord(const Text& File, Text& Record) {
  Long Number = 0;
  for (std::size_t Place = 0; Place < File.size();) {
    const std::size_t End = std::min(File.find("\n$$$$", Place), File.size());
    ++Number;
    Record = File.substr(Place, End - Place);
    if (FindField(Record, "ASSIGNMENT") != Text::npos) return Number;
    Place = End + 5;
  }
  return 0;
}

}  // namespace

void TakeNmreData(const Text& Record) { TakeAssigned(ReadAssigned(Record)); }

bool OpenNmreData(const Text& Path) {
  if (QuerySave() != False) return false;
  try {
    Text Record;
    const Long Number = FindRecord(ReadWholeFile(Path), Record);
    if (Number == 0) throw Failure("it has no signals as NMReData");
    if (!ConvertMolecule({.Path = Path, .Smiles = {}, .Record = Number}, ConvertedPath())) return false;
    TakeConverted(Path, Path);
    if (!IsSet(W.MoleculeLoaded)) return false;
    TakeNmreData(Record);
    W.ViewMode = ShieldingView;
  } catch (const Failure& Problem) {
    ShowWarning(Join("Could not take the measured signals from ", Path, ": ", Problem.What, "."));
  }
  RefreshView();
  return IsSet(W.ShieldingAvailable);
}

}  // namespace zelvanor
