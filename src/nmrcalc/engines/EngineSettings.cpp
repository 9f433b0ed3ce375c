#include "nmrcalc/engines/EngineSettings.h"

#include <filesystem>

#include "basic/TextTools.h"
#include "nmrcalc/engines/KeyedFile.h"

namespace nmrcalc {

namespace {

struct TextRow {
  const char* Key;
  std::string EngineSettings::*Target;
};
constexpr TextRow TextRows[] = {
    {"ShieldingEngine", &EngineSettings::ShieldingEngine},
    {"CouplingEngine", &EngineSettings::CouplingEngine},
    {"Level", &EngineSettings::Level},
    {"Launcher", &EngineSettings::Launcher},
    {"Program", &EngineSettings::Program},
    {"Scratch", &EngineSettings::Scratch},
};

struct NumberRow {
  const char* Key;
  int EngineSettings::*Target;
  int Highest;
};
constexpr NumberRow NumberRows[] = {
    {"Processes", &EngineSettings::Processes, 100000},
    {"Memory", &EngineSettings::Memory, 100000000},
    {"TimeLimit", &EngineSettings::TimeLimit, 1000000},
    {"CacheSize", &EngineSettings::CacheSize, 1000000},
};

}  // namespace

EngineSettings ReadEngineSettings(const std::string& WorkDirectory) {
  EngineSettings Settings;
  Settings.Path =
      WorkDirectory + (WorkDirectory.empty() || WorkDirectory.ends_with('/') ? "" : "/") + EngineSettingsFile;
  std::error_code Error;
  if (!std::filesystem::exists(Settings.Path, Error)) return Settings;
  const KeyedFile File = ReadKeyedFile(Settings.Path);
  const KeyedSection* Section = FindSection(File, "backend");
  if (Section == nullptr) return Settings;
  for (const TextRow& Row : TextRows) {
    const KeyedLine* Line = FindKey(*Section, Row.Key);
    if (Line != nullptr && !Line->Value.empty()) Settings.*Row.Target = Line->Value;
  }
  for (const NumberRow& Row : NumberRows) {
    const KeyedLine* Line = FindKey(*Section, Row.Key);
    if (Line == nullptr || Line->Value.empty()) continue;
    Settings.*Row.Target = WholeNumberAt(File.File, Line->Line, Line->Value, 0, Row.Highest, Row.Key);
  }
  if (const KeyedLine* Line = FindKey(*Section, "Scaling"); Line != nullptr) {
    Settings.Scaling = zelvanor::EqualsIgnoringCase(Line->Value, "Yes");
    if (!Settings.Scaling && !zelvanor::EqualsIgnoringCase(Line->Value, "No")) {
      FailAtLine(File.File, Line->Line, "Scaling should be Yes or No, but is \"" + Line->Value + "\"");
    }
  }
  return Settings;
}

}  // namespace nmrcalc
