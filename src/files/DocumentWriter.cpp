#include "files/DocumentWriter.h"

#include <algorithm>
#include <span>
#include <utility>

#include "files/DocumentFormat.h"
#include "files/ExtraSections.h"
#include "files/HostText.h"
#include "files/OptionLines.h"
#include "history/History.h"
#include "platform/EndSignals.h"
#include "platform/TextFiles.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Values in general form, one blank between them and none at the end.
template <class Number>
Text ValueList(std::span<const Number> Values) {
  Text Line;
  for (const Number& Value : Values) {
    if (!Line.empty()) Line += ' ';
    AppendGeneralForm(Line, Value);
  }
  return Line;
}

std::span<const Single> FirstOf(std::span<const Single> Values, int Count) {
  const auto Wanted = static_cast<std::size_t>(std::max(Count, 0));
  if (Wanted > Values.size()) throw Failure(failures::Subscript);
  return Values.subspan(0, Wanted);
}

void WriteAtomSection(const char* Begin, const Array<Integer>& Entries, int Count, const char* End,
                      Integer FileNumber) {
  PrintLine(FileNumber, Begin);
  PrintLine(FileNumber, Count > 0 ? GeneralForm(Long{Count}) : Text("0"));
  WriteEntries(Entries, Count, FileNumber);
  PrintLine(FileNumber, End);
}

void WriteEquivalentSets(Integer FileNumber) {
  PrintLine(FileNumber, document::EquivalentBegin);
  Array<Integer> Members;
  for (int Set = 0; Set < NumSavedSets; ++Set) {
    const int Size = W.EquivalentSetSize[Set];
    if (Size <= 0) continue;
    PrintLine(FileNumber, Join(document::EquivalentSet, " ", Long{Set + 1}));
    Members.ReDim(Size);
    for (int Member = 0; Member < Size; ++Member) Members[Member] = W.EquivalentAtom(Set, Member);
    WriteEntries(Members, Size, FileNumber);
  }
  PrintLine(FileNumber, document::EquivalentEnd);
}

// A piece between its two keyword lines.
template <class Routine>
bool WriteBetween(const char* Begin, const char* End, Routine WritePiece) {
  PrintLine(LineWork.FileNumber, Begin);
  if (!IsSet(WritePiece())) return false;
  PrintLine(LineWork.FileNumber, End);
  return true;
}

// The stored lines give no message of their own when they can't be written; the document does.
Flag WriteMolecule() {
  const Flag Written = WriteSystem(LineWork.FileNumber);
  if (!IsSet(Written) && W.ZMatrixPath.empty()) throw Failure(failures::DeviceError);
  return Written;
}

Flag WriteExtraSections() {
  for (const ExtraSection& Section : ExtraSections()) {
    if (!Section.HasContent()) continue;
    PrintLine(LineWork.FileNumber, Section.Begin);
    Section.Write(LineWork.FileNumber);
    PrintLine(LineWork.FileNumber, Section.End);
  }
  return True;
}

bool WriteOpenDocument(const Text& Path) {
  const Integer File = LineWork.FileNumber;
  if (IsSet(W.MoleculeLoaded) && !WriteBetween(document::BeginHostBlock, document::EndHostBlock, WriteMolecule)) {
    return false;
  }
  return IsSet(WriteSelections(Path, File)) &&
         WriteBetween(document::OptionsBegin, document::OptionsEnd, [&] { return WriteOptionLines(Path, File); }) &&
         WriteBetween(document::AtomicNumbersBegin, document::AtomicNumbersEnd,
                      [&] { return WriteNMRAtomicNumbers(Path, File); }) &&
         WriteBetween(document::ResultsBegin, document::ResultsEnd,
                      [&] { return WriteShieldingCoupling(Path, File); }) &&
         WriteBetween(document::SpectraBegin, document::SpectraEnd, [&] { return WriteSpectra(Path, File); }) &&
         IsSet(WriteExtraSections());
}

// Runs the body of a section routine: its failures become a warning and the result 0.
template <class Routine>
Flag ReportFailure(Routine Body) {
  try {
    Body();
    return True;
  } catch (const Failure& Problem) {
    WarnOfFailure(Problem);
    return False;
  }
}

Flag OpenAndWrite(const Text& Path) {
  const EndHeld Held;
  try {
    LineWork.FileNumber = FreeFile();
    OpenForReplacement(Path, LineWork.FileNumber);
  } catch (const Failure&) {
    ShowWarning(Join("Zelvanor cannot open file ", Path, "."));
    return False;
  }
  try {
    if (WriteOpenDocument(Path)) {
      CloseFile(LineWork.FileNumber);
      W.DocumentDirty = False;
      NoteSaved();
      return True;
    }
  } catch (const Failure&) {
    ShowWarning(Join("Error saving the current information to file ", Path, "."));
  }
  CloseFileQuietly(LineWork.FileNumber);
  return False;
}

}  // namespace

void WriteEntries(const Array<Integer>& Entries, int Count, Integer FileNumber) {
  for (int Entry = 0; Entry < Count; ++Entry) {
    const int Atom = Entries[Entry] - 1;
    if (Atom == -1) {
      // A set that the host did not give to its end has places without an atom. They come back as they are.
      PrintLine(FileNumber, "mol 1 atom 0");
      continue;
    }
    PrintLine(FileNumber, Join("mol ", W.AtomMolecule[Atom], " atom ", W.AtomInMolecule[Atom]));
  }
}

Flag WriteSelections(const Text& /*Path*/, Integer FileNumber) {
  return ReportFailure([&] {
    WriteAtomSection(document::NMRBegin, W.NMRAtom, W.NumNMRAtoms, document::NMREnd, FileNumber);
    WriteAtomSection(document::QuantumBegin, W.QuantumAtom, W.NumQuantumAtoms, document::QuantumEnd, FileNumber);
    WriteEquivalentSets(FileNumber);
    WriteAtomSection(document::LabelledBegin, W.LabelledAtom, W.NumLabelledAtoms, document::LabelledEnd, FileNumber);
  });
}

Flag WriteNMRAtomicNumbers(const Text& /*Path*/, Integer FileNumber) {
  return ReportFailure([&] {
    if (W.NumNMRAtoms <= 0) return;
    Text Line;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      if (Atom > 0) Line += ' ';
      AppendGeneralForm(Line, Long{int(W.NMRAtomicNumber[Atom])});
    }
    PrintLine(FileNumber, Line);
  });
}

Flag WriteShieldingCoupling(const Text& /*Path*/, Integer FileNumber) {
  return ReportFailure([&] {
    if (!IsSet(W.ShieldingAvailable) && !IsSet(W.CouplingAvailable)) return;
    PrintLine(FileNumber, document::ResultsShielding);
    PrintLine(FileNumber, ValueList(FirstOf(W.Shielding.Span(), W.NumNMRAtoms)));
    PrintLine(FileNumber, document::ResultsTensor);
    constexpr int Components = 9;
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      const std::span<const Single> Tensor = W.ShieldTensor.Span();
      const std::size_t First = static_cast<std::size_t>(Atom) * TensorValues;
      if (First + TensorValues > Tensor.size()) throw Failure(failures::Subscript);
      PrintLine(FileNumber, ValueList(Tensor.subspan(First, Components)));
      PrintLine(FileNumber, ValueList(Tensor.subspan(First + Components, TensorValues - Components)));
    }
    PrintLine(FileNumber, document::ResultsCoupling);
    for (int Atom = 0; Atom < W.NumNMRAtoms; ++Atom) {
      const std::span<const Single> Row = W.Coupling.Row(Atom);
      PrintLine(FileNumber, ValueList(FirstOf(Row, W.NumNMRAtoms)));
    }
  });
}

Flag WriteSpectra(const Text& /*Path*/, Integer FileNumber) {
  return ReportFailure([&] {
    if (!IsSet(W.SpectraAvailable)) return;
    PrintLine(FileNumber, PrintForm(W.PeakCount));
    PrintLine(FileNumber, document::SpectraHeader);
    for (Long Peak = 0; Peak < W.PeakCount; ++Peak) {
      PrintLine(FileNumber, PrintForm(W.PeakFrequency[Peak]) + PrintForm(W.PeakIntensity[Peak]) +
                                PrintForm(W.PeakDegeneracy[Peak]) + PrintForm(W.PeakLineWidth[Peak]));
    }
    PrintLine(FileNumber, document::SpectraType);
    PrintLine(FileNumber, PrintForm(W.SpectraType + 1));
    PrintLine(FileNumber, document::SpectraReference);
    const std::span<const Single> References = W.ReferenceShielding.Span();
    PrintLine(FileNumber, ValueList(FirstOf(References, W.NumReferenceElements)));
    PrintLine(FileNumber, document::SpectraHalf);
    PrintLine(FileNumber, PrintForm(W.NumSpinHalfNMRAtoms));
  });
}

Flag WriteDocument(const Text& Path) {
  Flag Result = False;
  {
    const BusyState Busy;
    Result = OpenAndWrite(Path);
  }
  RefreshView();
  return Result;
}

bool WriteCopy(const Text& Path) {
  const auto ShowBox = std::exchange(Platform.ShowBox, [](const MessageBox&) { return BoxAnswer::Ok; });
  const Integer Former = std::exchange(LineWork.FileNumber, FreeFile());
  bool Written = false;
  try {
    OpenForOutput(Path, LineWork.FileNumber);
    Written = WriteOpenDocument(Path);
    CloseFile(LineWork.FileNumber);
  } catch (const Failure&) {
    Written = false;
    CloseFileQuietly(LineWork.FileNumber);
  }
  LineWork.FileNumber = Former;
  Platform.ShowBox = ShowBox;
  return Written;
}

}  // namespace zelvanor
