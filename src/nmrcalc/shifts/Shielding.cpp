#include "nmrcalc/shifts/Shielding.h"

#include "nmrcalc/shifts/Substituents.h"

namespace nmrcalc {

const std::vector<RequiredTable>& RequiredShiftTables() {
  static const std::vector<RequiredTable> Required = {{"reference", 1}, {"H.lone", 2}, {"N", 2},
                                                      {"O", 2},         {"tensor", 2}, {"tensor.bond", 1}};
  return Required;
}

std::vector<ShiftEstimate> EstimateShifts(const TableFile& Tables, const ShiftModel& Model, const Molecule& System) {
  const ShiftPrediction Predicted = PredictShifts(Model, System);
  std::vector<ShiftEstimate> Shifts(System.Atoms.size(), {.Origin = "nothing is known of this element"});
  std::size_t Node = 0;
  std::size_t Hydrogen = 0;
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    const int Z = System.Atoms[Index].AtomicNumber;
    if (Z == 1) {
      const ShiftEstimate& Item = Predicted.Hydrogens[Hydrogen++];
      if (Item.Known) {
        Shifts[Index] = Item;
      } else {
        const std::string Kind = System.Atoms[Index].Neighbours.empty() ? "bare" : "H";
        Shifts[Index] = {.Shift = TableValue(Tables, "H.lone", Kind),
                         .Error = TableValue(Tables, "H.lone", Kind, 1),
                         .Known = true,
                         .Origin = "no heavy atom beside"};
      }
    } else if (Z > 1) {
      const ShiftEstimate& Item = Predicted.Nodes[Node++];
      if (Z == 7 || Z == 8) {
        Shifts[Index] = EstimateByRegion(Tables, System, Index);
      } else if (Item.Known) {
        Shifts[Index] = Item;
      }
    }
  }
  return Shifts;
}

double ShieldingFromShift(const TableFile& Tables, int AtomicNumber, const ShiftEstimate& Estimate) {
  if (!Estimate.Known) return 0.0;
  const std::vector<double>* Reference = FindRow(Tables, "reference", SymbolOf(AtomicNumber));
  return (Reference == nullptr ? 0.0 : (*Reference)[0]) - Estimate.Shift;
}

}  // namespace nmrcalc
