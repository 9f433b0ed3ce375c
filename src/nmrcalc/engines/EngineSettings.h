#pragma once

#include <string>

namespace nmrcalc {

// What computes stage 1 and how it is started: the section [backend] of the file nmrback.ini in the work directory.
// Without the file, or without a key, the defaults hold: everything by the built-in model.
struct EngineSettings {
  std::string Path{};                       // of the file, for messages
  std::string ShieldingEngine = "builtin";  // names of engines
  std::string CouplingEngine = "builtin";
  std::string Level{};     // section of nmrlevel.txt; empty: the one that belongs to the method of the document
  int Processes = 0;       // 0: one for each core
  std::string Launcher{};  // "%n" stands for the number of processes; empty: mpirun of the program's own build
  std::string Program{};   // of the engine; empty: the one that is found
  std::string Scratch{};   // directory; empty: the system's for temporary files
  int Memory = 0;          // MB, all processes together; 0: half of what is free
  int TimeLimit = 0;       // minutes; 0: none
  int CacheSize = 200;     // MB of kept results; 0: none are kept
  bool Scaling = false;    // shieldings are corrected by the level's straight line
};

inline constexpr const char* EngineSettingsFile = "nmrback.ini";

// Throws Failure with file, line and reason for a value that makes no sense.
EngineSettings ReadEngineSettings(const std::string& WorkDirectory);

}  // namespace nmrcalc
