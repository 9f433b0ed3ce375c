#include "nmrcalc/engines/Engine.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "basic/TextTools.h"
#include "nmrcalc/Estimate.h"
#include "nmrcalc/input/InputText.h"

namespace nmrcalc {

namespace {

void ComputeBuiltIn(const EngineTask& Task, ParamResults& Results, Log& Report) {
  ParamResults Own = Estimate(Task.Input, Task.ParameterDirectory, Task.Shieldings, Task.Couplings, Report);
  if (!Task.Couplings) Own.Couplings = std::move(Results.Couplings);
  if (Task.Shieldings || Results.Description.empty()) {
    Results = std::move(Own);
  } else {
    Results.Couplings = std::move(Own.Couplings);
    Results.Description += "; couplings estimated by the built-in model";
  }
}

const Engine BuiltInEngine{
    .Name = "builtin",
    .Title = "the built-in model",
    .FindMissing = [](const EngineSettings&) { return std::string(); },
    .EstimateSeconds = [](const EngineTask&) { return 0.01; },
    .Compute = ComputeBuiltIn,
};

const Engine* const Engines[] = {&BuiltInEngine, &NwchemEngine};

std::string PathIn(const std::string& Directory, const char* Name) {
  return (std::filesystem::path(Directory) / Name).string();
}

// A file beside the output: written beside its place and renamed, or removed when there is nothing to tell.
void WriteBeside(const std::string& Path, const std::string& Text) {
  std::error_code Error;
  std::filesystem::remove(Path, Error);
  if (Text.empty()) return;
  const std::string Temporary = Path + ".tmp";
  std::ofstream File(Temporary, std::ios::binary | std::ios::trunc);
  File << Text;
  File.close();
  if (File) std::filesystem::rename(Temporary, Path, Error);
}

std::string FormatReferences(const ParamResults& Results) {
  if (Results.References.empty()) return "";
  std::string Text = Results.Level + "\n";
  for (const auto& [Element, Value] : Results.References) {
    Text += SymbolOf(Element) + " " + FixedNumber(Value, 4) + "\n";
  }
  return Text;
}

void RunOne(const Engine& Chosen, const EngineTask& Task, ParamResults& Results, Log& Report) {
  if (const std::string Missing = Chosen.FindMissing(Task.Settings); !Missing.empty()) throw zelvanor::Failure(Missing);
  const double Seconds = Chosen.EstimateSeconds(Task);
  if (Seconds >= 1) {
    AddToLog(Report, 0, std::string("Engine ") + Chosen.Title + ": about " + FixedNumber(std::ceil(Seconds), 0) + " s");
  }
  Chosen.Compute(Task, Results, Report);
}

}  // namespace

const Engine& FindEngine(const std::string& Name, const EngineSettings& Settings) {
  for (const Engine* Item : Engines) {
    if (zelvanor::EqualsIgnoringCase(Item->Name, Name)) return *Item;
  }
  throw zelvanor::Failure("There is no engine \"" + Name + "\", which " + Settings.Path +
                          " asks for; choose one in Setup, Backend");
}

std::string RunEngines(const std::string& InputPath, const std::string& ParameterDirectory,
                       const std::string& WorkDirectory, Log& Report) {
  WriteBeside(PathIn(WorkDirectory, "nmrparam.ref"), "");
  const EngineSettings Settings = ReadEngineSettings(WorkDirectory);
  const Engine& Shieldings = FindEngine(Settings.ShieldingEngine, Settings);
  const Engine& Couplings = FindEngine(Settings.CouplingEngine, Settings);
  const ParamInput Input = ReadParamInput(InputPath);
  ParamResults Results = EmptyResults(Input);
  EngineTask Task{.Input = Input, .Settings = Settings, .ParameterDirectory = ParameterDirectory};
  Task.Shieldings = Input.WantsShielding || Input.WantsTensor;
  Task.Couplings = Input.WantsCoupling;
  if (&Shieldings == &Couplings) {
    RunOne(Shieldings, Task, Results, Report);
  } else {
    EngineTask Part = Task;
    Part.Couplings = false;
    if (Task.Shieldings) RunOne(Shieldings, Part, Results, Report);
    Part.Shieldings = false;
    Part.Couplings = true;
    if (Task.Couplings) RunOne(Couplings, Part, Results, Report);
  }
  if (Results.Description.empty()) Results.Description = std::string("Couplings by ") + Couplings.Title;
  WriteBeside(PathIn(WorkDirectory, "nmrparam.err"), FormatErrors(Results));
  WriteBeside(PathIn(WorkDirectory, "nmrparam.ref"), FormatReferences(Results));
  return FormatResults(Input, Results);
}

}  // namespace nmrcalc
