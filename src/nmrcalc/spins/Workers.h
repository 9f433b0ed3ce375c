#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace nmrcalc {

using RunClock = std::chrono::steady_clock;

// Tells workers to give up: one of them does it for all, or the clock does.
struct StopSign {
  RunClock::time_point Deadline = RunClock::time_point::max();
  std::atomic<bool> IsSet{false};
};

inline bool MustStop(StopSign& Sign) {
  if (!Sign.IsSet && RunClock::now() > Sign.Deadline) Sign.IsSet = true;
  return Sign.IsSet;
}

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

// Runs the action for each item, counted from 0, on all usable cores, which take the next one when they are done.
// Throws what the first action that failed has thrown; items not yet begun are left out then.
template <class Action>
void ForEachItem(std::size_t NumItems, Action Act) {
  std::atomic<std::size_t> Next{0};
  std::mutex Lock;
  std::exception_ptr Error;
  const std::size_t NumWorkers = std::min(NumUsableCores(), NumItems);
  ForEachWorker(NumWorkers, NumWorkers > 1, [&](std::size_t) {
    try {
      for (std::size_t Item = Next++; Item < NumItems; Item = Next++) Act(Item);
    } catch (...) {
      const std::lock_guard<std::mutex> Guard(Lock);
      if (!Error) Error = std::current_exception();
      Next = NumItems;
    }
  });
  if (Error) std::rethrow_exception(Error);
}

}  // namespace nmrcalc
