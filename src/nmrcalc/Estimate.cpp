#include "nmrcalc/Estimate.h"

#include <optional>
#include <vector>

#include "nmrcalc/couplings/Coupling.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Tensor.h"

namespace nmrcalc {

namespace {

constexpr const char* ShiftFile = "nmr_shft.abp";
constexpr const char* ModelFile = "nmr_shft.net";
constexpr const char* CouplingFile = "nmr_cupl.abp";

// What the numbers are, for the first line of the results.
std::string Describe(const ShiftModel* Model) {
  const std::string Shifts =
      Model == nullptr ? "" : "shifts by the model " + Model->Version + ", expected errors " + Model->Summary + "; ";
  return "NMR parameters estimated from measured ones: " + Shifts +
         "couplings by path; not a result of KRDO/1 or KRDO/2 or of any other quantum chemical method";
}

std::string AtomLabel(const Molecule& System, std::size_t Index) {
  const Atom& Item = System.Atoms[Index];
  return SymbolOf(Item.AtomicNumber) + " " + std::to_string(Item.InMolecule) + " of molecule " +
         std::to_string(Item.Molecule);
}

// What the log tells of an atom's shift: always when there is little to go by, else at level 2.
void LogShift(const ParamInput& Input, std::size_t Center, const ShiftEstimate& Estimate, Log& Report) {
  const std::string Label = AtomLabel(Input.System, Center);
  if (!Estimate.Known) {
    AddToLog(Report, 0, "No estimate for " + Label + ": " + Estimate.Origin);
    return;
  }
  const std::string Number = FixedNumber(Estimate.Shift, 2) + " +- " + FixedNumber(Estimate.Error, 2) + " ppm";
  if (!Estimate.Seen) {
    AddToLog(Report, 0, Label + ": surroundings that the model was not made from; " + Number);
  } else if (LogWants(Report, 2)) {
    AddToLog(Report, 2, Label + ": " + Number + (Estimate.Origin.empty() ? "" : " (" + Estimate.Origin + ")"));
  }
}

void ComputeShieldings(const ParamInput& Input, const ShiftModel& Model, const std::string& TablePath,
                       ParamResults& Results, Log& Report) {
  const TableFile Tables = ReadTables(TablePath, RequiredShiftTables());
  const std::vector<ShiftEstimate> Shifts = EstimateShifts(Tables, Model, Input.System);
  for (std::size_t K = 0; K < Input.NMRAtoms.size(); ++K) {
    const std::size_t Center = Input.NMRAtoms[K];
    const ShiftEstimate& Estimate = Shifts[Center];
    const double Shielding = ShieldingFromShift(Tables, Input.System.Atoms[Center].AtomicNumber, Estimate);
    if (Input.WantsShielding) Results.Shieldings[K] = Shielding;
    if (Input.WantsTensor) Results.Tensors.push_back(EstimateTensor(Tables, Input.System, Center, Shielding));
    Results.Errors.push_back(Estimate.Known ? Estimate.Error : 0.0);
    LogShift(Input, Center, Estimate, Report);
  }
}

void ComputeCouplings(const ParamInput& Input, const std::string& TablePath, ParamResults& Results, Log& Report) {
  const TableFile Tables = ReadTables(TablePath, RequiredCouplingTables());
  CouplingModel Model{.Tables = Tables, .System = Input.System};
  Results.Couplings = EstimateCouplings(Model, Input.NMRAtoms);
  const std::size_t NumAtoms = Input.NMRAtoms.size();
  for (std::size_t Row = 0; Row < NumAtoms && LogWants(Report, 2); ++Row) {
    for (std::size_t Column = Row + 1; Column < NumAtoms; ++Column) {
      const double J = Results.Couplings[Row * NumAtoms + Column];
      if (J == 0.0) continue;
      AddToLog(Report, 2,
               AtomLabel(Input.System, Input.NMRAtoms[Row]) + " - " + AtomLabel(Input.System, Input.NMRAtoms[Column]) +
                   ": " + FixedNumber(J, 2) + " Hz");
    }
  }
}

}  // namespace

ParamResults Estimate(const ParamInput& Input, const std::string& ParameterDirectory, bool Shieldings, bool Couplings,
                      Log& Report) {
  const std::string Directory = ParameterDirectory + (ParameterDirectory.ends_with('/') ? "" : "/");
  ParamResults Results = EmptyResults(Input);
  const std::optional<ShiftModel> Model =
      Shieldings ? std::optional<ShiftModel>(ReadShiftModel(Directory + ModelFile)) : std::nullopt;
  Results.Description = Describe(Model ? &*Model : nullptr);
  AddToLog(Report, 0, "Stage 1: " + Results.Description);
  AddToLog(
      Report, 0,
      std::to_string(Input.NMRAtoms.size()) + " NMR atoms of " + std::to_string(Input.System.Atoms.size()) + " atoms");
  if (Model) ComputeShieldings(Input, *Model, Directory + ShiftFile, Results, Report);
  if (Couplings) ComputeCouplings(Input, Directory + CouplingFile, Results, Report);
  return Results;
}

}  // namespace nmrcalc
