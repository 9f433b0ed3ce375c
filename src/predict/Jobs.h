#pragma once

#include <sys/types.h>

#include <chrono>
#include <vector>

#include "predict/Task.h"

namespace zelvanor::predict {

// Molecules at work, each in a process of its own that has the started program by fork: a crash, a hang or a leak ends
// with it.
struct Job {
  pid_t Process = 0;
  Molecule One;
  Text Folder;  // its working files
  std::chrono::steady_clock::time_point Start;
  bool OutOfTime = false;
};

struct Jobs {
  const Options& Given;
  Text Root;  // holds the folders of all
  std::vector<Job> Running;
};

// Signals that the run waits for are blocked from here on, the jobs' own apart.
void BlockSignals();

void StartJob(Jobs& All, Molecule One);
// Waits for a job to end, at most Milliseconds. The number of a signal that asks the run to end, 0 for none.
int WaitForJobs(Jobs& All, int Milliseconds);
// Takes a job that has ended off the list. False when there is none.
bool TakeEnded(Jobs& All, Job& Ended, Result& Made);
void EndAll(Jobs& All);

}  // namespace zelvanor::predict
