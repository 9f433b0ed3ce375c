#include "nmrcalc/Estimate.h"

#include <vector>

#include "nmrcalc/couplings/Coupling.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/shifts/Shielding.h"
#include "nmrcalc/shifts/Tensor.h"

namespace nmrcalc {

namespace {

constexpr const char* ShiftFile = "nmr_shft.abp";
constexpr const char* CouplingFile = "nmr_cupl.abp";
constexpr const char* Description =
    "NMR parameters estimated by additive increments; not a result of KRDO/1 or KRDO/2 or of any other quantum "
    "chemical method";

std::string AtomLabel(const Molecule& System, std::size_t Index) {
  const Atom& Item = System.Atoms[Index];
  return SymbolOf(Item.AtomicNumber) + " " + std::to_string(Item.InMolecule) + " of molecule " +
         std::to_string(Item.Molecule);
}

void ComputeShieldings(const ParamInput& Input, const std::string& TablePath, ParamResults& Results, Log& Report) {
  const TableFile Tables = ReadTables(TablePath, RequiredShiftTables());
  for (std::size_t K = 0; K < Input.NMRAtoms.size(); ++K) {
    const std::size_t Center = Input.NMRAtoms[K];
    const ShiftEstimate Estimate = EstimateShift(Tables, Input.System, Center);
    const double Shielding = ShieldingFromShift(Tables, Input.System.Atoms[Center].AtomicNumber, Estimate);
    if (Input.WantsShielding) Results.Shieldings[K] = Shielding;
    if (Input.WantsTensor) Results.Tensors.push_back(EstimateTensor(Tables, Input.System, Center, Shielding));
    if (!Estimate.Known) {
      AddToLog(Report, 0, "No estimate for " + AtomLabel(Input.System, Center) + ": " + Estimate.Origin);
    } else if (LogWants(Report, 2)) {
      AddToLog(
          Report, 2,
          AtomLabel(Input.System, Center) + ": " + FixedNumber(Estimate.Shift, 2) + " ppm (" + Estimate.Origin + ")");
    }
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
  Results.Description = Description;
  AddToLog(Report, 0, std::string("Stage 1: ") + Description);
  AddToLog(
      Report, 0,
      std::to_string(Input.NMRAtoms.size()) + " NMR atoms of " + std::to_string(Input.System.Atoms.size()) + " atoms");
  if (Shieldings) ComputeShieldings(Input, Directory + ShiftFile, Results, Report);
  if (Couplings) ComputeCouplings(Input, Directory + CouplingFile, Results, Report);
  return Results;
}

std::string EstimateParameters(const std::string& InputPath, const std::string& ParameterDirectory, Log& Report) {
  const ParamInput Input = ReadParamInput(InputPath);
  return FormatResults(Input, Estimate(Input, ParameterDirectory, Input.WantsShielding || Input.WantsTensor,
                                       Input.WantsCoupling, Report));
}

}  // namespace nmrcalc
