// The bundled backend: both inputs, and the tables of the first stage. What it writes has to be what the program reads.

#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "nmrcalc/Estimate.h"
#include "nmrcalc/input/ParamInput.h"
#include "nmrcalc/input/SpectrumInput.h"
#include "nmrcalc/spins/Spectrum.h"

namespace zelvanor::fuzz {

namespace {

// Enough for ten spins; what needs more is refused, so that no input takes seconds.
constexpr double FreeBytes = 4 << 20;

nmrcalc::Log AllLines() { return {.Path = {}, .Level = 2, .Text = {}}; }

// What the stage makes of the input, empty where it is refused with a reason.
template <class Routine>
Text RunStage(Routine Stage) {
  try {
    return Stage();
  } catch (const Failure& Problem) {
    Demand(!Problem.What.empty(), "a refusal without a reason");
    return {};
  }
}

Text Estimate(const Text& Input, const Text& Tables) {
  return RunStage([&] {
    nmrcalc::Log Report = AllLines();
    return nmrcalc::EstimateParameters(Input, Tables, Report);
  });
}

bool ReadParam(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmrparam.in", Input);
  const Text Output = Estimate(Path, SourceFile("data"));
  RunStage([&] { return std::to_string(nmrcalc::ReadLogLevel(Path)); });
  if (!Output.empty()) Demand(ParamResultsTarget.Read(Output), "the output of the first stage can't be read");
  return !Output.empty();
}

bool ReadSpect(TextView Input) {
  ResetProgram();
  const Text Path = WriteInput("nmrspect.in", Input);
  const Text Output = RunStage([&] {
    nmrcalc::Log Report = AllLines();
    const nmrcalc::SpectrumInput System = nmrcalc::ReadSpectrumInput(Path);
    return nmrcalc::FormatSpectrum(System, nmrcalc::SimulateSpectrum(System, FreeBytes, Report));
  });
  if (!Output.empty()) Demand(SpectResultsTarget.Read(Output), "the output of the second stage can't be read");
  return !Output.empty();
}

// The input in the place of the table that it looks like, with the other one as it is installed.
bool ReadTables(TextView Input) {
  static const Text System = WriteInput("tables.in", ReadBack(SourceFile("tests/fuzz/seeds/BackendParam/ok-ethanol")));
  static const Text Shifts = ReadBack(SourceFile("data/nmr_shft.abp"));
  static const Text Couplings = ReadBack(SourceFile("data/nmr_cupl.abp"));
  const bool HoldsCouplings = Input.find("[J") != TextView::npos;
  WriteInput("nmr_shft.abp", HoldsCouplings ? TextView(Shifts) : Input);
  WriteInput("nmr_cupl.abp", HoldsCouplings ? Input : TextView(Couplings));
  return !Estimate(System, Folder()).empty();
}

}  // namespace

const Target BackendParamTarget = {"BackendParam", ReadParam};
const Target BackendSpectTarget = {"BackendSpect", ReadSpect};
const Target BackendTablesTarget = {"BackendTables", ReadTables};

}  // namespace zelvanor::fuzz
