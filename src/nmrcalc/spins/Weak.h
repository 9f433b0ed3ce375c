#pragma once

#include <vector>

#include "nmrcalc/spins/Lines.h"
#include "nmrcalc/spins/SpinSystem.h"

namespace nmrcalc {

// First-order lines of each site of a part, in the order of Part.Sites: every coupling taken as J_ij I_iz I_jz, so that
// the lines of a site stand at Frequency_i + sum J_ij M_j over the total Mz of every other site, each with its binomial
// weight. No diagonalisation; the work grows with the number of lines that are distinct. Right where |J| is small
// against the distances, with an error of about J^2 / (2 distance). Throws Failure beyond LargestLineCount distinct
// lines for one site, or four times as many for the part.
std::vector<std::vector<Line>> SimulateWeak(const SpectrumInput& Input, const SpinPart& Part);

inline constexpr std::size_t LargestLineCount = 4000000;

}  // namespace nmrcalc
