#pragma once

#include <sys/types.h>

#include <map>
#include <optional>

#include "hostbus/BusServer.h"
#include "morvantis-sim/Options.h"

namespace zelvanor::morvantis_sim {

// The simulated host on the bus, and the program that it has started.
struct Simulator {
  hostsim::SimulatedHost Host;
  Options Given;
  std::map<Text, bool> AnswersHaveTag;  // in each conversation, by its partner
  hostbus::ServerHandle Server;
  pid_t Started = 0;
};

// Loads the system and takes the host's name on the bus. Throws a Failure.
void OpenSimulator(Simulator& Sim, Options Given);
// Starts the program that the options name. Throws a Failure.
void StartProgram(Simulator& Sim);
// The exit status of the started program once it has ended.
std::optional<int> StatusOfEnded(Simulator& Sim);

}  // namespace zelvanor::morvantis_sim
