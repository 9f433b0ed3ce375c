#include "nmrcalc/engines/NwchemOutput.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

// Nuclear g factors of nitrogen-15 and nitrogen-14 in proportion (Stone, At. Data Nucl. Data Tables 90, 2005, 75:
// magnetic moments -0.28318884 with spin 1/2 and 0.40376100 with spin 1).
constexpr double Nitrogen15Over14 = (-0.28318884 / 0.5) / 0.403761;

// What the engine writes when it gives up, and what that means. The first row that is found counts.
struct ComplaintRow {
  const char* Mark;
  const char* Meaning;
};
constexpr const char* KilledMeaning =
    "A process of NWChem was killed; if nobody did so, the machine lacks memory: give less of it or fewer processes in "
    "Setup, Backend. Compute goes on from the last wave function";
constexpr ComplaintRow Complaints[] = {
    {"needs UHF wave function", "NWChem computed no couplings, since it took a closed-shell wave function"},
    {"No space left on device",
     "The disk is full; free space in the scratch and cache directories or choose others in Setup, Backend"},
    {"movec_write failed",
     "The wave function could not be written; free space in the scratch and cache directories or choose others in "
     "Setup, Backend"},
    {"write failed",
     "NWChem could not write its files; free space in the scratch directory or choose another one in "
     "Setup, Backend"},
    {"cphf did not converge",
     "The response to the field did not converge; a smaller convergence limit (Setup, Shielding & Coupling, SCF) or "
     "another level may help"},
    {"CPKS procedure is NOT converged",
     "The response to the field did not converge; a smaller convergence limit (Setup, Shielding & Coupling, SCF) or "
     "another level may help"},
    {"Calculation failed to converge",
     "The wave function did not converge; allow more iterations or switch acceleration (Setup, Shielding & Coupling, "
     "SCF), and look at the geometry and the charge"},
    {"not reaching convergence criteria",
     "The wave function did not converge; allow more iterations or switch acceleration (Setup, Shielding & Coupling, "
     "SCF), and look at the geometry and the charge"},
    {"no such basis available",
     "The engine's library has no such basis set for an element of the molecule; name another one in nmrlevel.txt"},
    {"non-existing file",
     "The engine's library has no such basis set; name another one in nmrlevel.txt, or install the package "
     "nwchem-data"},
    {"out of memory", "NWChem needs more memory than it was given; raise it in Setup, Backend"},
    {"nsufficient memory", "NWChem needs more memory than it was given; raise it in Setup, Backend"},
    {"failed to open the input file",
     "NWChem could not open its input; the scratch directory has to be reached from "
     "every machine (Setup, Backend)"},
    {"error in the input file", "NWChem did not accept its input; a functional in nmrlevel.txt may be unknown to it"},
    {"error related to the specified geometry", "NWChem did not accept the geometry; look for atoms too near together"},
    // What launchers tell of a process that was killed: MPICH's, Open MPI's, Slurm's.
    {"Killed (signal 9)", KilledMeaning},
    {"signal 9 (Killed)", KilledMeaning},
    {": Killed", KilledMeaning},
};

struct LineReader {
  std::string_view Rest;
  std::string_view Line{};
};

bool NextLine(LineReader& Reader) {
  if (Reader.Rest.empty()) return false;
  const std::size_t End = std::min(Reader.Rest.find('\n'), Reader.Rest.size());
  Reader.Line = zelvanor::TrimWhite(Reader.Rest.substr(0, End));
  Reader.Rest.remove_prefix(std::min(End + 1, Reader.Rest.size()));
  return true;
}

// Whole numbers and decimals; false for stars, NaN and all else that is no number.
bool ReadValue(std::string_view Token, double& Value) {
  if (Token.empty() || Token.find_first_not_of("+-.0123456789EeDd") != std::string_view::npos) return false;
  Value = zelvanor::PrefixNumber(Token);
  return std::isfinite(Value);
}

bool ReadRow(LineReader& Reader, double* Target) {
  if (!NextLine(Reader)) return false;
  const auto Tokens = SplitTokens(Reader.Line);
  if (Tokens.size() != 3) return false;
  return ReadValue(Tokens[0], Target[0]) && ReadValue(Tokens[1], Target[1]) && ReadValue(Tokens[2], Target[2]);
}

// "isotropic =     339.9027"
bool ReadNamed(LineReader& Reader, std::string_view Name, double& Value) {
  while (NextLine(Reader)) {
    if (Reader.Line.empty()) continue;
    if (!Reader.Line.starts_with(Name)) return false;
    return ReadValue(zelvanor::TrimWhite(Reader.Line.substr(std::min(Reader.Line.find('=') + 1, Reader.Line.size()))),
                     Value);
  }
  return false;
}

// Stands on "Total Shielding Tensor".
bool ReadTensor(LineReader& Reader, ComputedTensor& Tensor) {
  for (std::size_t Row = 0; Row < 3; ++Row) {
    if (!ReadRow(Reader, &Tensor.Components[3 * Row])) return false;
  }
  if (!ReadNamed(Reader, "isotropic", Tensor.Isotropic) || !ReadNamed(Reader, "anisotropy", Tensor.Anisotropy)) {
    return false;
  }
  while (NextLine(Reader) && !Reader.Line.starts_with("Principal Components")) {
  }
  return NextLine(Reader) && ReadRow(Reader, Tensor.Principal.data());
}

// "Atom    2:   1-H  and Atom    3:  14-N": places, and the factor for nitrogen-14.
bool ReadPair(std::string_view Line, ComputedCoupling& Pair, double& Factor) {
  const auto Tokens = SplitTokens(Line);
  if (Tokens.size() != 7) return false;
  double First = 0;
  double Second = 0;
  if (!ReadValue(Tokens[1].substr(0, Tokens[1].size() - 1), First) ||
      !ReadValue(Tokens[5].substr(0, Tokens[5].size() - 1), Second) || First < 1 || Second < 1) {
    return false;
  }
  Pair.First = static_cast<std::size_t>(First) - 1;
  Pair.Second = static_cast<std::size_t>(Second) - 1;
  Factor = (Tokens[2] == "14-N" ? Nitrogen15Over14 : 1.0) * (Tokens[6] == "14-N" ? Nitrogen15Over14 : 1.0);
  return true;
}

void FindProblem(const std::string& Text, NwchemOutput& Output) {
  for (const ComplaintRow& Row : Complaints) {
    if (Text.find(Row.Mark) == std::string::npos) continue;
    Output.Problem = Row.Meaning;
    return;
  }
}

std::string LastNumberedStep(std::string_view Text, std::string_view Head) {
  const std::size_t Start = Text.rfind(Head);
  if (Start == std::string_view::npos) return "";
  LineReader Reader{.Rest = Text.substr(Start)};
  std::string Step;
  while (NextLine(Reader)) {
    const auto Tokens = SplitTokens(Reader.Line);
    const bool IsStep = Tokens.size() >= 4 && Tokens.back().find('.') != std::string_view::npos;
    if (!IsStep) continue;
    // "1 3 1.47D-01 0.9" of the response, "d= 0,ls=0.0,diis 1 -76.3 ..." of the wave function
    const std::string_view Number = Tokens[0] == "d=" && Tokens.size() > 2 ? Tokens[2] : Tokens[0];
    if (Number.find_first_not_of("0123456789") == std::string_view::npos) Step = Number;
  }
  return Step;
}

}  // namespace

NwchemOutput ReadNwchemOutput(const std::string& Text) {
  NwchemOutput Output;
  LineReader Reader{.Rest = Text};
  ComputedTensor Tensor;
  ComputedCoupling Pair;
  double Factor = 0.0;  // of the pair that is being told; 0: none
  int NumRuns = 0;
  constexpr std::string_view Name = "(NWChem) ";
  while (NextLine(Reader)) {
    const std::string_view Line = Reader.Line;
    if (const std::size_t Place = Line.find(Name); Place != std::string_view::npos) {
      Output.Version = Line.substr(Place + Name.size());
      ++NumRuns;
    } else if (Line.starts_with("Atom:")) {
      const auto Tokens = SplitTokens(Line);
      Tensor = {.Symbol = Tokens.size() > 2 ? std::string(Tokens[2]) : ""};
    } else if (Line == "Total Shielding Tensor") {
      if (ReadTensor(Reader, Tensor)) Output.Tensors.push_back(Tensor);
    } else if (Line.starts_with("Atom ") && Line.find(" and Atom ") != std::string_view::npos) {
      if (!ReadPair(Line, Pair, Factor)) Factor = 0.0;
    } else if (Line.starts_with("Isotropic Spin-Spin Coupling") && Factor != 0.0) {
      const auto Tokens = SplitTokens(Line);
      if (Tokens.size() >= 5 && ReadValue(Tokens[4], Pair.J)) {
        Pair.J *= Factor;
        Output.Couplings.push_back(Pair);
      }
      Factor = 0.0;
    } else if (Line.starts_with("Total times  cpu:")) {
      Output.Finished = true;
    }
  }
  FindProblem(Text, Output);
  if (NumRuns > 1) {
    Output.Problem =
        "The launcher line started NWChem several times instead of once with several processes, since it belongs to "
        "another message passing than the program; change one of them in Setup, Backend (with Slurm and nwchem.mpich: "
        "srun --mpi=pmi2 -K -n %n)";
  }
  return Output;
}

NwchemProgress FindNwchemProgress(const std::string& Text, std::size_t NumAtoms, std::size_t NumGroups) {
  // Shares of the time, as measured with some ten atoms.
  constexpr double WaveFunction = 0.3;
  constexpr double Response = 0.65;
  constexpr double UsualSteps = 5.0;
  const auto Count = [&](std::string_view Mark) {
    std::size_t Found = 0;
    for (std::size_t Place = Text.find(Mark); Place != std::string::npos; Place = Text.find(Mark, Place + 1)) ++Found;
    return Found;
  };
  if (NumGroups > 0) {
    const std::size_t Done = Count("Task  times");
    if (Text.find("Indirect Spin-Spin Coupling Tensors") == std::string::npos) {
      return {.Share = 0.05,
              .Step = "Couplings: wave function, iteration " + LastNumberedStep(Text, "convergence    iter")};
    }
    return {.Share = static_cast<double>(Done) / static_cast<double>(NumGroups),
            .Step = "Couplings: nucleus " + std::to_string(std::min(Done + 1, NumGroups)) + " of " +
                    std::to_string(NumGroups)};
  }
  if (const std::size_t Done = Count("Total Shielding Tensor"); Done > 0) {
    return {.Share = WaveFunction + Response,
            .Step = "Shieldings: tensor " + std::to_string(Done) + " of " + std::to_string(NumAtoms)};
  }
  if (const std::size_t Place = Text.find("Chemical Shielding Tensors"); Place != std::string::npos) {
    const std::string Step = LastNumberedStep(std::string_view(Text).substr(Place), "iter   nsub");
    const double Steps = Step.empty() ? 0.0 : zelvanor::PrefixNumber(Step);
    return {
        .Share = WaveFunction + Response * std::min(0.95, 0.2 + 0.8 * Steps / (UsualSteps + 1)),
        .Step = "Shieldings: response to the fields along x, y and z" + (Step.empty() ? "" : ", iteration " + Step)};
  }
  const std::string Step = LastNumberedStep(Text, "convergence    iter");
  if (Step.empty()) return {.Share = 0.0, .Step = "Starting the engine"};
  const double Steps = zelvanor::PrefixNumber(Step);
  return {.Share = WaveFunction * Steps / (Steps + UsualSteps), .Step = "Shieldings: wave function, iteration " + Step};
}

}  // namespace nmrcalc
