// Molecule files: the records of a file of any kind, our own readers of them, and the host text that they give, as the
// program then reads it. Bonds and orders are searched for in small systems only, where an input costs little.

#include "convert/Records.h"
#include "convert/Structure.h"
#include "files/Converter.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

using namespace convert;

constexpr int MostSearched = 200;

Structure ReadOwn(FileKind Kind, TextView Content) {
  if (Kind == FileKind::Mol2) return ReadMol2(Content);
  return Kind == FileKind::Pdb ? ReadPdb(Content) : ReadXyz(Content);
}

void CompleteAndRead(FileKind Kind, const Record& Next) {
  Structure Whole = ReadOwn(Kind, Next.Content);
  CheckPlaces(Whole);
  if (Whole.Count() > MostSearched) return;
  if (Kind != FileKind::Mol2) AddBonds(Whole);
  FindOrders(Whole);
  FindCharges(Whole);
  SumCharges(Whole);
  MarkAromatic(Whole);
  Whole.Title = Next.Title;
  const int NumAtoms = Whole.Count();
  const Text Host = HostTextOf(Whole, "input");
  ResetProgram();
  Demand(IsSet(ReadConverted(WriteInput("input.mvs", Host), "input")), "the program refuses what was converted");
  Demand(Workspace.NumAtoms == NumAtoms, "atoms were lost on the way");
}

}  // namespace

// Whether a molecule came through whole.
bool TryMoleculeFile(TextView Input) {
  const Text Path = WriteInput("input", Input);
  bool Taken = false;
  try {
    RecordSource Source;
    // What obabel would read is not ours, and no process starts here.
    const FileKind Kind = KindOfContent(Input.substr(0, 4096));
    if (Kind == FileKind::Cml || Kind == FileKind::Cif) return false;
    OpenRecords(Source, Path);
    Record Next;
    for (Long Number = 1; NextRecord(Source, Next); ++Number) {
      Demand(Next.Number == Number, "records are not counted one by one");
      Demand(PlainTitle(Next.Title) == Next.Title, "a title is not plain");
      try {
        if (Source.Kind == FileKind::Mol) {
          ReadFields(Next.Content);
        } else if (Next.Problem.empty()) {
          CompleteAndRead(Source.Kind, Next);
          Taken = true;
        }
      } catch (const Failure&) {
        // the next record may do
      }
    }
  } catch (const Failure&) {
    return Taken;
  }
  return Taken;
}

}  // namespace zelvanor::fuzz
