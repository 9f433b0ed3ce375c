#include "nmrcalc/engines/ParamResults.h"

#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

void AppendRow(std::string& Text, const double* First, std::size_t Count, int Decimals) {
  for (std::size_t K = 0; K < Count; ++K) {
    if (K > 0) Text += ' ';
    Text += FixedNumber(First[K], Decimals);
  }
  Text += '\n';
}

}  // namespace

ParamResults EmptyResults(const ParamInput& Input) {
  const std::size_t NumAtoms = Input.NMRAtoms.size();
  return {.Shieldings = std::vector<double>(NumAtoms), .Couplings = std::vector<double>(NumAtoms * NumAtoms)};
}

std::string FormatResults(const ParamInput& Input, const ParamResults& Results) {
  const std::size_t NumAtoms = Input.NMRAtoms.size();
  std::string Text = Results.Description + "\n" + std::to_string(NumAtoms) + "\n";
  for (std::size_t K = 0; K < NumAtoms; ++K) {
    Text += (K > 0 ? " " : "") + std::to_string(Input.System.Atoms[Input.NMRAtoms[K]].AtomicNumber);
  }
  Text += "\nFIELD\n" + std::to_string(Input.Frequency) + "\nSHIELDING\n";
  AppendRow(Text, Results.Shieldings.data(), NumAtoms, 4);
  if (Input.WantsTensor) {
    Text += "TENSOR\n";
    for (const ShieldingTensor& Tensor : Results.Tensors) {
      AppendRow(Text, Tensor.Components.data(), 9, 6);
      const double Second[] = {Tensor.Eigenvalues[0], Tensor.Eigenvalues[1], Tensor.Eigenvalues[2], Tensor.Isotropic,
                               Tensor.Anisotropy};
      AppendRow(Text, Second, 5, 6);
    }
  }
  Text += "COUPLING\n";
  for (std::size_t Row = 0; Row < NumAtoms; ++Row) {
    AppendRow(Text, Results.Couplings.data() + Row * NumAtoms, NumAtoms, 4);
  }
  return Text;
}

std::string FormatErrors(const ParamResults& Results) {
  std::string Text;
  for (const double Error : Results.Errors) Text += FixedNumber(Error, 4) + "\n";
  return Text;
}

}  // namespace nmrcalc
