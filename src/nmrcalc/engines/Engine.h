#pragma once

#include "nmrcalc/Log.h"
#include "nmrcalc/engines/EngineSettings.h"
#include "nmrcalc/engines/ParamResults.h"

namespace nmrcalc {

// What computes stage 1. Each engine fills the results that it is asked for and throws Failure with what to do.

struct EngineTask {
  const ParamInput& Input;
  const EngineSettings& Settings;
  const std::string& ParameterDirectory;
  bool Shieldings = false;  // and tensors
  bool Couplings = false;
};

struct Engine {
  const char* Name;   // in the settings
  const char* Title;  // for people
  // What is not installed and which package has it; empty when the engine can run.
  std::string (*FindMissing)(const EngineSettings& Settings);
  double (*EstimateSeconds)(const EngineTask& Task);
  void (*Compute)(const EngineTask& Task, ParamResults& Results, Log& Report);
};

// Throws Failure for a name that no engine has.
const Engine& FindEngine(const std::string& Name, const EngineSettings& Settings);

// Stage 1: reads nmrparam.in and the settings of the work directory, runs the engines, gives the text of nmrparam.out.
// Beside it come nmrparam.err (the error of each shielding) and nmrparam.ref (the references of the level), where the
// engine knows them. Throws Failure.
std::string RunEngines(const std::string& InputPath, const std::string& ParameterDirectory,
                       const std::string& WorkDirectory, Log& Report);

extern const Engine NwchemEngine;

}  // namespace nmrcalc
