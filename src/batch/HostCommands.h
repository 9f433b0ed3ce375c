#pragma once

#include "batch/Batch.h"

namespace zelvanor::batch {

// The command host in all its forms.
void HostCommand(const std::vector<Argument>& All);

// Fills the host and clipboard slots of Platform with the simulated host of this process, which is not there yet, and
// this process's own clipboard.
void UseSimulatedHost();

}  // namespace zelvanor::batch
