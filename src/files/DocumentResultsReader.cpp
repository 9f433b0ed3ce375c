#include <algorithm>

#include "basic/Numbers.h"
#include "files/DocumentFormat.h"
#include "files/DocumentReader.h"
#include "platform/TextFiles.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr int TensorComponents = 9;
constexpr int PeakTokens = 4;

// A value that may end in a comma.
Single ReadListValue(const Text& Token) {
  TextView Value = Token;
  if (Value.ends_with(',')) Value.remove_suffix(1);
  return StrictSingle(Value);
}

void AllocateResults() {
  const int Count = std::max<int>(W.NumNMRAtoms, 0);
  // First, since its bound is the one that overflows: nothing large is allocated for a count that is refused.
  W.ShieldTensor.ReDim(TensorValues * Integer(Count));
  W.Shielding.ReDim(Count);
  W.ShieldingError.ReDim(Count);
  W.ChemicalShift.ReDim(Count);
  W.Coupling.ReDim(Count, Count);
}

enum class ResultsPart { None, Shielding, Tensor, Coupling };

struct ResultsState {
  ResultsPart Part = ResultsPart::None;
  Integer Row;        // of the coupling rows
  Integer TensorRow;  // atom whose tensor is read
};

// Tokens of a list line that are taken: as many as there are NMR atoms, with a warning when the line has another count.
int CheckListLine(TextView Line, const Text& Path) {
  LineWork.TokenCount = Tokenize(Line);
  if (LineWork.TokenCount != W.NumNMRAtoms) WarnOfLine(Line, Path);
  return std::min<int>(LineWork.TokenCount, W.NumNMRAtoms);
}

void TakeTensorLine(ResultsState& State, TextView Line) {
  LineWork.TokenCount = Tokenize(Line);
  const Integer First = TensorValues * State.TensorRow;
  // The two lines of an atom are told apart by their length alone.
  const bool Components = LineWork.TokenCount == TensorComponents;
  const int From = Components ? First : First + TensorComponents;
  for (int Token = 1; Token <= LineWork.TokenCount; ++Token) {
    W.ShieldTensor[From + Token - 1] = ReadListValue(LineWork.Tokens[Token]);
  }
  if (!Components) ++State.TensorRow;
}

// True when the last coupling row has been read.
bool TakeResultsLine(ResultsState& State, TextView Line, const Text& Path) {
  if (State.Part == ResultsPart::Tensor) {
    TakeTensorLine(State, Line);
    return false;
  }
  const int Count = CheckListLine(Line, Path);
  if (State.Part == ResultsPart::Shielding) {
    for (int Atom = 0; Atom < Count; ++Atom) W.Shielding[Atom] = StrictSingle(LineWork.Tokens[Atom + 1]);
  } else if (State.Part == ResultsPart::Coupling) {
    for (int Atom = 0; Atom < Count; ++Atom) W.Coupling(State.Row, Atom) = ReadListValue(LineWork.Tokens[Atom + 1]);
    if (State.Row == W.NumNMRAtoms - 1) return true;
    ++State.Row;
  }
  return false;
}

void ReadResultsLines(const Text& Path, Integer FileNumber) {
  ResultsState State;
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(document::ResultsEnd)) return;
    if (Line.starts_with(document::ResultsShielding)) {
      State.Part = ResultsPart::Shielding;
      W.ShieldingAvailable = True;
    } else if (Line.starts_with(document::ResultsTensor)) {
      State.Part = ResultsPart::Tensor;
    } else if (Line.starts_with(document::ResultsCoupling)) {
      State.Part = ResultsPart::Coupling;
      W.CouplingAvailable = True;
    } else if (TakeResultsLine(State, Line, Path)) {
      return;
    }
  }
}

enum class SpectraPart { Count, Peaks, Type, Reference, Half };

struct SpectraState {
  SpectraPart Part = SpectraPart::Count;
  Long Row = 0;
};

void TakePeakCount(TextView Line, Integer FileNumber) {
  LineWork.TokenCount = Tokenize(Line);
  const Long Count = StrictLong(LineWork.Tokens[1]);
  // A list that is longer than the whole file is a damaged count: it is not worth the memory.
  constexpr Double SpareRows = 1.0e6;
  if (Count > RemainingBytes(FileNumber) + SpareRows) throw Failure(failures::OutOfMemory);
  // The peaks of an earlier section go, and there are none again before their keyword.
  W.SpectraAvailable = False;
  W.PeakCount = Count;
  if (Count > 0) AllocatePeaks(Count);
}

void TakePeak(SpectraState& State, TextView Line) {
  if (State.Row >= W.PeakCount) return;
  LineWork.TokenCount = Tokenize(Line);
  if (LineWork.TokenCount != PeakTokens) {
    ShowWarning("The actual number of data should be four for each peak of NMR spectrum.");
    if (LineWork.TokenCount < PeakTokens) LineWork.Tokens.ReDimPreserve(PeakTokens);
  }
  W.PeakFrequency[State.Row] = StrictSingle(LineWork.Tokens[1]);
  W.PeakIntensity[State.Row] = StrictSingle(LineWork.Tokens[2]);
  W.PeakDegeneracy[State.Row] = StrictLong(LineWork.Tokens[3]);
  W.PeakLineWidth[State.Row] = StrictSingle(LineWork.Tokens[4]);
  ++State.Row;
}

void TakeSpectraType(TextView Line) {
  const Integer Type = ToInteger(PrefixNumber(Line));
  if (Type >= 1 && Type <= 6) {
    W.SpectraType = Type - 1;
    return;
  }
  ShowWarning(Join("Spectral type --- ", Type, " is not supported by the current version of Zelvanor."));
  W.SpectraType = 0;
}

void TakeReferences(TextView Line) {
  LineWork.TokenCount = Tokenize(Line);
  const int Count = std::min<int>(LineWork.TokenCount, W.NumReferenceElements);
  for (int Entry = 0; Entry < Count; ++Entry) W.ReferenceShielding[Entry] = StrictSingle(LineWork.Tokens[Entry + 1]);
}

void TakeSpectraLine(SpectraState& State, TextView Line, Integer FileNumber) {
  switch (State.Part) {
    case SpectraPart::Count:
      TakePeakCount(Line, FileNumber);
      break;
    case SpectraPart::Peaks:
      TakePeak(State, Line);
      break;
    case SpectraPart::Type:
      TakeSpectraType(Line);
      break;
    case SpectraPart::Reference:
      TakeReferences(Line);
      break;
    case SpectraPart::Half:
      W.NumSpinHalfNMRAtoms = ToInteger(PrefixNumber(Line));
      break;
  }
}

// False for a peak count below 1.
bool ReadSpectraLines(Integer FileNumber) {
  SpectraState State;
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(document::SpectraEnd)) return true;
    if (Line.starts_with(document::SpectraBegin)) {
      State.Part = SpectraPart::Count;
    } else if (Line.starts_with(document::SpectraHeaderWord)) {
      State.Part = SpectraPart::Peaks;
      W.SpectraAvailable = True;  // a list of no peaks is a spectrum too
    } else if (Line.starts_with(document::SpectraType)) {
      State.Part = SpectraPart::Type;
    } else if (Line.starts_with(document::SpectraReference)) {
      State.Part = SpectraPart::Reference;
    } else if (Line.starts_with(document::SpectraHalf)) {
      State.Part = SpectraPart::Half;
    } else {
      TakeSpectraLine(State, Line, FileNumber);
      if (State.Part == SpectraPart::Count && W.PeakCount < 1) return false;
    }
  }
}

}  // namespace

Flag ReadShieldingCoupling(const Text& Path, Integer FileNumber) {
  Flag Result = False;
  try {
    AllocateResults();
    ReadResultsLines(Path, FileNumber);
    Result = True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  if (IsSet(W.ShieldingAvailable) || IsSet(W.CouplingAvailable)) W.ParamResultsStale = False;
  return Result;
}

Flag ReadSpectra(const Text& /*Path*/, Integer FileNumber) {
  Flag Result = False;
  try {
    W.NumSpinHalfNMRAtoms = W.NumNMRAtoms;
    if (!IsSet(W.SpectraAvailable)) W.PeakCount = 0;  // that of an earlier document
    if (!ReadSpectraLines(FileNumber)) return False;
    CountSpinHalfAtoms();
    if (IsSet(W.SpectraAvailable)) W.SpectResultsStale = False;
    Result = True;
    ComputeChemicalShifts();
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
  }
  return Result;
}

}  // namespace zelvanor
