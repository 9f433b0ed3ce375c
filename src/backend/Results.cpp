#include "backend/Results.h"

#include <vector>

#include "backend/ErrorBars.h"
#include "basic/Numbers.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* ErrorMark = "ERRMSG:";
constexpr std::size_t ErrorTextPlace = 8;  // behind the mark and one more character
constexpr int TensorComponents = 9;

// A read that ends here; its message, if any, has been shown.
struct ReadRefused {};

// Cuts a line of values at single blanks, leading ones passed over. Only the blank separates, and behind the last value
// the line gives no more.
class ValueScanner {
 public:
  explicit ValueScanner(TextView Line) : Rest(TrimLeftBlanks(Line)) {}

  bool Done() const { return Ended; }
  Double Next() {
    const std::size_t Blank = Rest.find(' ');
    const TextView Value = Rest.substr(0, Blank);
    if (Blank == TextView::npos) {
      Ended = true;
    } else {
      Rest = TrimLeftBlanks(Rest.substr(Blank + 1));
    }
    // A tab is no separator and no part of a number.
    return Value.starts_with('\t') ? 0.0 : PrefixNumber(Value);
  }

 private:
  TextView Rest;
  bool Ended = false;
};

// Hands up to Count values of a line to Store(place, value).
template <class Routine>
void ScanLine(TextView Line, int Count, Routine Store) {
  ValueScanner Scanner(Line);
  for (int Place = 0; Place < Count && !Scanner.Done(); ++Place) Store(Place, Scanner.Next());
}

// The next line where the file's end means failure with this warning, or without one.
TextView NextLine(const Text& WarningAtEnd = {}) {
  if (!AtEnd(LineWork.FileNumber)) return LineInput(LineWork.FileNumber);
  if (!WarningAtEnd.empty()) ShowWarning(WarningAtEnd);
  throw ReadRefused();
}

void RefuseErrorReport(TextView Line) {
  if (!Line.starts_with(ErrorMark)) return;
  if (Line.size() >= ErrorTextPlace) ShowError(Line.substr(ErrorTextPlace));
  throw ReadRefused();
}

void AllocateParamResults(Integer Count) {
  AllocateResults(Count);
  W.NMRAtom.ReDimPreserve(Count);
  W.NMRAtomicNumber.ReDimPreserve(Count);
}

void ReadShieldings() {
  const Text Warning = Join("Error reading the shielding constants from file ", Settings.ParamOutputFile, ".");
  NextLine(Warning);
  W.NMRFrequency = ToLong(PrefixNumber(NextLine(Warning)));
  NextLine(Warning);
  ScanLine(NextLine(Warning), W.NumNMRAtoms, [](int Atom, Double Value) { W.Shielding[Atom] = ToSingle(Value); });
}

void ReadTensors() {
  const Text Warning = Join("Error reading the shielding tensor from file ", Settings.ParamOutputFile, ".");
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    const int First = TensorValues * Atom;
    const auto Store = [](int From) {
      return [From](int Place, Double Value) { W.ShieldTensor[From + Place] = ToSingle(Value); };
    };
    ScanLine(NextLine(Warning), TensorComponents, Store(First));
    ScanLine(NextLine(Warning), TensorValues - TensorComponents, Store(First + TensorComponents));
  }
}

void ReadCouplings() {
  const Text Warning = Join("Error reading the coupling constants from file ", Settings.ParamOutputFile, ".");
  for (int Row = 0; Row < W.NumNMRAtoms; ++Row) {
    ScanLine(NextLine(Warning), W.NumNMRAtoms,
             [Row](int Column, Double Value) { W.Coupling(Row, Column) = ToSingle(Value); });
  }
}

void ReadParamLines() {
  const Text Method(NextLine());
  RefuseErrorReport(Method);
  const Integer Count = ToInteger(PrefixNumber(NextLine()));
  if (Count <= 0) {
    W.NumNMRAtoms = Count;
    ShowWarning(Join("There is no NMR atom selection.  The number of NMR atoms is ", W.NumNMRAtoms, "."));
    throw ReadRefused();
  }
  if (Count > W.NumNMRAtoms) {
    ShowWarning(Join("There are more NMR atoms in the results than were asked for.  The number of NMR atoms is ", Count,
                     " instead of ", W.NumNMRAtoms, "."));
    throw ReadRefused();
  }
  AllocateParamResults(Count);
  W.NumNMRAtoms = Count;  // not before there is room for them: the document goes by it, and can still be saved
  ScanLine(NextLine(), W.NumNMRAtoms, [](int Atom, Double Value) { W.NMRAtomicNumber[Atom] = ToInteger(Value); });
  ReadShieldings();
  if (EqualsIgnoringCase(NextLine().substr(0, 6), "TENSOR")) {
    ReadTensors();
    NextLine();
  }
  ReadCouplings();
  W.ShieldingMethod = TrimBlanks(Method);
}

void ReadPeaks() {
  const Text Warning =
      Join("Error reading the NMR frequencies and intensities from file ", Settings.SpectOutputFile, ".");
  constexpr int NumColumns = 4;
  for (Long Peak = 0; Peak < W.PeakCount; ++Peak) {
    ScanLine(NextLine(Warning), NumColumns, [Peak](int Column, Double Value) {
      switch (Column) {
        case 0:
          W.PeakFrequency[Peak] = ToSingle(Value);
          break;
        case 1:
          W.PeakIntensity[Peak] = ToSingle(Value);
          break;
        case 2:
          W.PeakDegeneracy[Peak] = ToLong(Value);
          break;
        default:
          W.PeakLineWidth[Peak] = ToSingle(Value);
      }
    });
  }
}

void ReadSpectLines() {
  W.SpectDescription = NextLine();
  if (W.SpectDescription.starts_with(ErrorMark)) {
    const Text Report = W.SpectDescription;
    if (Report.size() >= ErrorTextPlace) W.SpectDescription = Report.substr(ErrorTextPlace);
    RefuseErrorReport(Report);
  }
  W.PeakCount = ToLong(PrefixNumber(NextLine()));
  if (W.PeakCount <= 0) throw ReadRefused();
  // No list is longer than its file: a count that says so is not worth the memory.
  constexpr Double SpareRows = 1.0e6;
  if (W.PeakCount > RemainingBytes(LineWork.FileNumber) + SpareRows) throw Failure(failures::OutOfMemory);
  AllocatePeaks(W.PeakCount);
  const TextView Header = NextLine();
  const auto Holds = [&](const char* Word) { return Header.find(Word) != TextView::npos; };
  if (!Holds("FREQUENCY") && !Holds("INTENSITY") && !Holds("LINEWIDTH")) {
    ShowWarning("Error reading the spectrum header, which should say 'FREQUENCY INTENSITY DEGENERACY LINEWIDTH'.");
    throw ReadRefused();
  }
  ReadPeaks();
}

// Runs the read of one file; whatever ends it early makes the result 0. A number that does not fit its type ends it
// without a message, as a file that breaks off in the headings does.
template <class Routine>
Flag ReadResultFile(const Text& Path, Routine ReadLines) {
  Flag Result = False;
  try {
    LineWork.FileNumber = FreeFile();
    OpenForInput(Path, LineWork.FileNumber);
    ReadLines();
    Result = True;
  } catch (const ReadRefused&) {
    Result = False;
  } catch (const Failure& Problem) {
    // A backend that never stopped writing is more than a result that can't be read.
    if (Problem.What == failures::FileTooLarge) WarnOfFailure(Problem);
  }
  CloseFileQuietly(LineWork.FileNumber);
  return Result;
}

// The NMR atoms of an equivalent set, as indices into the results, in rising order.
std::vector<int> FindMembers(int Set) {
  std::vector<int> Members;
  for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
    for (int Member = 0; Member < W.EquivalentSetSize[Set]; ++Member) {
      if (W.EquivalentAtom(Set, Member) == W.NMRAtom[Atom]) {
        Members.push_back(Atom);
        break;
      }
    }
  }
  return Members;
}

void AverageShieldings(const std::vector<int>& Members, int Size) {
  for (Array<Single>* Values : {&W.Shielding, &W.ShieldingError}) {
    if (Members.back() > Values->UpperBound()) continue;
    Double Sum = 0;
    for (const int Atom : Members) Sum += (*Values)[Atom];
    IgnoreFailure([&] {
      const Single Mean = ToSingle(Sum / Size);
      for (const int Atom : Members) (*Values)[Atom] = Mean;
    });
  }
}

void AverageOuterCouplings(const std::vector<int>& Members, int Size) {
  std::vector<bool> Inside(static_cast<std::size_t>(int(W.NumNMRAtoms)));
  for (const int Atom : Members) Inside[static_cast<std::size_t>(Atom)] = true;
  for (int Outer = 0; Outer < W.NumNMRAtoms; ++Outer) {
    if (Inside[static_cast<std::size_t>(Outer)]) continue;
    Double Sum = 0;
    for (const int Atom : Members) Sum += Double{W.Coupling(Outer, Atom)} + W.Coupling(Atom, Outer);
    IgnoreFailure([&] {
      const Single Mean = ToSingle(Sum / (2.0 * Size));
      for (const int Atom : Members) W.Coupling(Outer, Atom) = W.Coupling(Atom, Outer) = Mean;
    });
  }
}

void AverageInnerCouplings(const std::vector<int>& Members, int Size) {
  const int NumPairs = Size * Size - Size;
  if (NumPairs == 0) return;
  Double Sum = 0;
  for (const int First : Members) {
    for (const int Second : Members) Sum += W.Coupling(First, Second);
  }
  IgnoreFailure([&] {
    const Single Mean = ToSingle(Sum / NumPairs);
    for (const int First : Members) {
      for (const int Second : Members) {
        if (First != Second) W.Coupling(First, Second) = Mean;
      }
    }
  });
}

}  // namespace

// A mean beyond a Single is not stored: the values stay as they were.
void AverageEquivalentResults() {
  // Shieldings of every set come first: the couplings take nothing from them, but a set may share members with another.
  std::vector<std::vector<int>> Members;
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    Members.push_back(W.EquivalentSetSize[Set] > 0 ? FindMembers(Set) : std::vector<int>());
    if (!Members.back().empty()) AverageShieldings(Members.back(), W.EquivalentSetSize[Set]);
  }
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    const std::vector<int>& Inside = Members[static_cast<std::size_t>(Set)];
    const int Size = W.EquivalentSetSize[Set];
    if (Size <= 0) continue;
    AverageOuterCouplings(Inside, Size);
    AverageInnerCouplings(Inside, Size);
  }
}

Flag ReadParamResults(const Text& Path) {
  return ReadResultFile(Path, [] {
    ReadParamLines();
    ReadShieldingErrors();
    if (IsSet(W.NMRAtomsValid)) AverageEquivalentResults();
  });
}

Flag ReadSpectResults(const Text& Path) { return ReadResultFile(Path, ReadSpectLines); }

}  // namespace zelvanor
