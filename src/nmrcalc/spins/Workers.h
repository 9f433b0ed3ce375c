#pragma once

#include <chrono>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace nmrcalc {

using RunClock = std::chrono::steady_clock;

// Cores that may be used: one when the library cannot be called from several threads.
std::size_t NumUsableCores();

// Runs the action for each worker, counted from 0, on threads of their own where it is worth while and they are to be
// had.
template <class Action>
void ForEachWorker(std::size_t NumWorkers, bool InParallel, Action Act) {
  std::vector<std::thread> Threads;
  std::size_t Next = 1;
  try {
    for (; InParallel && Next < NumWorkers; ++Next) Threads.emplace_back(Act, Next);
  } catch (const std::system_error&) {  // the first thread does the rest
  }
  Act(std::size_t{0});
  for (; Next < NumWorkers; ++Next) Act(Next);
  for (std::thread& Thread : Threads) Thread.join();
}

}  // namespace nmrcalc
