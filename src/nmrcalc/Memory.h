#pragma once

namespace nmrcalc {

// Free memory in bytes, as the system tells it (MemAvailable), cut to the limits of the process's control group and
// address space where these are lower. 2 GiB where nothing is known.
double FreeMemory();

}  // namespace nmrcalc
