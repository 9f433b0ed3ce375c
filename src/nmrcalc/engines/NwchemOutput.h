#pragma once

#include <array>
#include <string>
#include <vector>

namespace nmrcalc {

// The output of NWChem, judged by what it holds: the exit status says little.

struct ComputedTensor {
  std::string Symbol{};
  std::array<double, 9> Components{};  // row by row, ppm, as printed
  std::array<double, 3> Principal{};   // falling, as printed
  double Isotropic = 0.0;
  double Anisotropy = 0.0;
};

struct ComputedCoupling {
  std::size_t First = 0;  // from 0, in the order of the input
  std::size_t Second = 0;
  double J = 0.0;  // Hz; of nitrogen-15, whatever isotope the engine took
};

struct NwchemOutput {
  std::string Version{};                  // empty: no such program wrote it
  bool Finished = false;                  // it came to its end
  std::string Problem{};                  // what it complains of, for people, with what to do; empty: nothing
  std::vector<ComputedTensor> Tensors{};  // in the order of the input
  std::vector<ComputedCoupling> Couplings{};
};

// Never fails: what is not there is not there.
NwchemOutput ReadNwchemOutput(const std::string& Text);

// How far a running calculation is.
struct NwchemProgress {
  double Share = 0.0;  // 0 to 1
  std::string Step{};  // for people
};
NwchemProgress FindNwchemProgress(const std::string& Text, std::size_t NumAtoms, std::size_t NumGroups);

}  // namespace nmrcalc
