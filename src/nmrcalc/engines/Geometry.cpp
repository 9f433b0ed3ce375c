#include "nmrcalc/engines/Geometry.h"

#include <algorithm>
#include <filesystem>
#include <thread>

#include "basic/Failure.h"
#include "nmrcalc/Progress.h"
#include "nmrcalc/engines/EngineFiles.h"
#include "nmrcalc/engines/EngineSettings.h"
#include "nmrcalc/engines/Supervise.h"
#include "nmrcalc/input/InputText.h"
#include "nmrcalc/input/ParamInput.h"

namespace nmrcalc {

namespace {

constexpr const char* Program = "xtb";

std::string CoordinateText(const Molecule& System) {
  std::string Text = std::to_string(System.Atoms.size()) + "\n\n";
  for (const Atom& Item : System.Atoms) {
    Text += SymbolOf(Item.AtomicNumber);
    for (const double Coordinate : Item.Place) Text += " " + FixedNumber(Coordinate, 6);
    Text += "\n";
  }
  return Text;
}

// The cycles of the optimisation so far.
std::size_t CountCycles(const std::string& Output) {
  std::size_t Count = 0;
  for (std::size_t Place = Output.find("... CYCLE"); Place != std::string::npos;
       Place = Output.find("... CYCLE", Place + 1)) {
    ++Count;
  }
  return Count;
}

std::string ReadCoordinates(const std::string& Path, const Molecule& System) {
  const TextFile File = ReadTextFile(Path);
  std::string Text = std::to_string(System.Atoms.size()) + "\n";
  for (std::size_t Index = 0; Index < System.Atoms.size(); ++Index) {
    const auto Tokens = SplitTokens(TakeLine(File, Index + 2, "an atom"));
    if (Tokens.size() < 4 || AtomicNumberOf(Tokens[0]) != System.Atoms[Index].AtomicNumber) {
      FailAtLine(File, Index + 2, "not the atom that was expected");
    }
    for (std::size_t Axis = 1; Axis <= 3; ++Axis) {
      Text += (Axis > 1 ? " " : "") + FixedNumber(NumberAt(File, Index + 2, Tokens[Axis], "a coordinate"), 5);
    }
    Text += "\n";
  }
  return Text;
}

void ThrowUnlessOptimised(const ProgramRun& Run, const RunOutcome& Outcome, const EngineSettings& Settings,
                          Log& Report) {
  const std::string Output = ReadWholeFile(Run.OutputPath);
  AddToLog(Report, 0, Output);
  if (Outcome.End == RunEnd::Cancelled) throw zelvanor::Failure("The optimisation was cancelled");
  if (Outcome.End == RunEnd::TimedOut) {
    throw zelvanor::Failure("The time limit of " + std::to_string(Settings.TimeLimit) +
                            " minutes (Setup, Backend) is over");
  }
  if (Output.find("GEOMETRY OPTIMIZATION CONVERGED") != std::string::npos) return;
  throw zelvanor::Failure(
      "xtb found no geometry; look at the charge and at atoms that are too near together. It said: " +
      (Output.empty() ? Outcome.Problem : LastWords(Output)));
}

std::string RunXtb(const ParamInput& Input, const EngineSettings& Settings, const std::string& Scratch, Log& Report) {
  const unsigned Threads = Settings.Processes > 0 ? static_cast<unsigned>(Settings.Processes)
                                                  : std::max(1U, std::thread::hardware_concurrency());
  const ProgramRun Run{
      .Words = {Program, "in.xyz", "--gfn", "2", "--opt", "tight", "--chrg", std::to_string(Input.Quantum.Charge)},
      .Directory = Scratch,
      .OutputPath = Scratch + "/xtb.out",
      .Environment = {{"OMP_NUM_THREADS", std::to_string(Threads)}, {"OMP_STACKSIZE", "1G"}},
      .Files = {{Scratch + "/in.xyz", CoordinateText(Input.System)}},
      .Remove = {Scratch},
      .TimeLimit = 60.0 * Settings.TimeLimit};
  std::string Coordinates;
  RunSupervised(
      Run,
      [&](double) {
        ReportProgress(0, 0, "Geometry: cycle " + std::to_string(CountCycles(ReadWholeFile(Run.OutputPath))));
      },
      [&](const RunOutcome& Outcome) {
        ThrowUnlessOptimised(Run, Outcome, Settings, Report);
        Coordinates = ReadCoordinates(Scratch + "/xtbopt.xyz", Input.System);
      });
  return Coordinates;
}

}  // namespace

std::string OptimiseGeometry(const std::string& InputPath, const std::string& WorkDirectory, Log& Report) {
  const ParamInput Input = ReadParamInput(InputPath, false);
  const EngineSettings Settings = ReadEngineSettings(WorkDirectory);
  if (FindProgram(Program).empty()) {
    throw zelvanor::Failure("xtb was not found; install the Debian package xtb to optimise geometries");
  }
  AddToLog(Report, 0, "Stage 4: geometry of " + std::to_string(Input.System.Atoms.size()) + " atoms by xtb, GFN2");
  const std::string Coordinates = RunXtb(Input, Settings, MakeScratchDirectory(Settings.Scratch), Report);
  return "Geometry by xtb, GFN2-xTB\n" + Coordinates;
}

}  // namespace nmrcalc
