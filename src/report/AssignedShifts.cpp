#include "report/AssignedShifts.h"

#include "basic/Numbers.h"
#include "files/ExtraSections.h"
#include "platform/TextFiles.h"
#include "platform/Variables.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

constexpr const char* Begin = "AssignedShiftBegin";
constexpr const char* End = "AssignedShiftEnd";

bool HasContent() { return W.NumAssigned > 0; }

constexpr TextView SolventKey = "solvent ";

void WriteSection(Integer FileNumber) {
  if (!W.MeasuredSolvent.empty()) PrintLine(FileNumber, Join(SolventKey, W.MeasuredSolvent));
  for (int Place = 0; Place < W.NumAssigned; ++Place) {
    PrintLine(FileNumber, Join(W.AssignedAtom[Place], " ", W.AssignedShift[Place]));
  }
}

void ReadSection(Integer FileNumber) {
  std::map<int, Double> Shifts;
  for (;;) {
    const TextView Line = LineInput(FileNumber);
    if (Line.starts_with(End)) break;
    if (Line.starts_with(SolventKey)) W.MeasuredSolvent = Line.substr(SolventKey.size());
    const Long Atom = PrefixIndex(Line);
    const std::size_t Blank = Line.find(' ');
    if (Atom < 1 || Atom > W.NumAtoms || Blank == TextView::npos) continue;
    Shifts[Atom] = ToSingle(PrefixNumber(Line.substr(Blank)));
  }
  StoreAssignedShifts(Shifts);
}

}  // namespace

void StoreAssignedShifts(const std::map<int, Double>& Shifts) {
  W.NumAssigned = static_cast<int>(Shifts.size());
  W.AssignedAtom.ReDim(W.NumAssigned);
  W.AssignedShift.ReDim(W.NumAssigned);
  int Place = 0;
  for (const auto& [Atom, Shift] : Shifts) {
    W.AssignedAtom[Place] = Atom;
    W.AssignedShift[Place++] = ToSingle(Shift);
  }
}

void AddAssignedShifts() {
  AddExtraSection({Begin, End, HasContent, WriteSection, ReadSection});
  const auto Count = [] { return int(W.NumAssigned); };
  AddVariable("NumAssigned", W.NumAssigned);
  AddArray("AssignedAtom", W.AssignedAtom, Count);
  AddArray("AssignedShift", W.AssignedShift, Count);
  AddVariable("ShieldingMethod", W.ShieldingMethod);
}

}  // namespace zelvanor
