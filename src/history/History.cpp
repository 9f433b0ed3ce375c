#include "history/History.h"

#include <deque>
#include <new>
#include <utility>

#include "history/Snapshot.h"

namespace zelvanor {

std::function<void()> HistoryChanged;

namespace {

WorkspaceState& W = Workspace;

using Kept = std::shared_ptr<Snapshot>;

// Documents that are opened one after the other are told apart, so that saving one says nothing of the others.
struct State {
  Kept Document;
  int Origin = 0;
};

struct Step {
  Text Name;
  State Before;        // of a step to redo: the state after it
  int ViewBefore = 0;  // the views of the command, which going back and forth shows again
  int ViewAfter = 0;
};

std::deque<Step> UndoSteps;
std::deque<Step> RedoSteps;
State Latest;   // gives what the next snapshot can share
State Running;  // before the command that works
int RunningView = 0;
int Origin = 0;
int LastOrigin = 0;
int Depth = 0;

State TakeState() {
  Latest = {TakeSnapshot(Latest.Document.get()), Origin};
  return Latest;
}

template <class Routine>
void ForEachState(Routine Run) {
  for (Step& Each : UndoSteps) Run(Each.Before);
  for (Step& Each : RedoSteps) Run(Each.Before);
  if (Running.Document != nullptr) Run(Running);
}

bool SamePlace(const WorkspaceState& Other) {
  return W.DocumentTitle == Other.DocumentTitle && W.DocumentPath == Other.DocumentPath &&
         W.HostTextPath == Other.HostTextPath && W.ZMatrixPath == Other.ZMatrixPath;
}

// The states of the present document follow it to a new name.
void FollowPlace() {
  ForEachState([](State& Each) {
    if (Each.Origin != Origin) return;
    WorkspaceState& Rest = Each.Document->Rest;
    Rest.DocumentTitle = W.DocumentTitle;
    Rest.DocumentPath = W.DocumentPath;
    Rest.HostTextPath = W.HostTextPath;
    Rest.ZMatrixPath = W.ZMatrixPath;
  });
}

void DropOldSteps() {
  std::size_t Bytes = 0;
  for (const Step& Each : UndoSteps) Bytes += Each.Before.Document->OwnBytes;
  while (UndoSteps.size() > MostSteps || (UndoSteps.size() > 1 && Bytes > MostHistoryBytes)) {
    Bytes -= UndoSteps.front().Before.Document->OwnBytes;
    UndoSteps.pop_front();
  }
}

void EndCommand(const Text& Name, bool Merges) {
  const State Before = std::exchange(Running, {});
  if (Before.Document == nullptr) return;
  if (IsUnchanged(*Before.Document)) {
    if (!SamePlace(Before.Document->Rest)) FollowPlace();
    return;
  }
  if (!SamePlace(Before.Document->Rest)) Origin = ++LastOrigin;
  if (!Merges || UndoSteps.empty() || UndoSteps.back().Name != Name) UndoSteps.push_back({Name, Before, RunningView});
  UndoSteps.back().ViewAfter = W.ViewMode;
  RedoSteps.clear();
  DropOldSteps();
}

// Memory that is short takes the history and not the work.
template <class Routine>
void OrForget(Routine Run) {
  try {
    Run();
  } catch (const Failure&) {
    ForgetHistory();
  } catch (const std::bad_alloc&) {
    ForgetHistory();
  }
}

struct CommandDepth {
  CommandDepth() { ++Depth; }
  ~CommandDepth() { --Depth; }
  CommandDepth(const CommandDepth&) = delete;
  CommandDepth& operator=(const CommandDepth&) = delete;
};

void RunWork(const std::function<void()>& Work) {
  const CommandDepth Deeper;
  Work();
}

std::optional<Text> Go(std::deque<Step>& From, std::deque<Step>& To, int Step::*View) {
  if (From.empty() || Depth > 0) return std::nullopt;
  Step Going = From.back();
  Going.Before = TakeState();
  RestoreSnapshot(*From.back().Before.Document);
  Origin = From.back().Before.Origin;
  From.pop_back();
  W.ViewMode = Going.*View;
  To.push_back(std::move(Going));
  if (HistoryChanged) HistoryChanged();
  return To.back().Name;
}

}  // namespace

void RunRecorded(const Text& Name, const std::function<void()>& Work, bool Merges) {
  if (!Work) return;
  if (Depth > 0) return Work();
  OrForget([] { Running = TakeState(); });
  RunningView = W.ViewMode;
  try {
    RunWork(Work);
  } catch (...) {
    OrForget([&] { EndCommand(Name, Merges); });
    throw;
  }
  OrForget([&] { EndCommand(Name, Merges); });
  if (HistoryChanged) HistoryChanged();
}

bool IsRecording() { return Depth > 0; }

Text UndoName() { return UndoSteps.empty() ? Text() : UndoSteps.back().Name; }
Text RedoName() { return RedoSteps.empty() ? Text() : RedoSteps.back().Name; }

std::optional<Text> UndoStep() { return Go(UndoSteps, RedoSteps, &Step::ViewBefore); }
std::optional<Text> RedoStep() { return Go(RedoSteps, UndoSteps, &Step::ViewAfter); }

void NoteSaved() {
  ForEachState([](const State& Each) {
    if (Each.Origin == Origin) Each.Document->Rest.DocumentDirty = True;
  });
  if (Running.Document == nullptr || !IsUnchanged(*Running.Document)) return;
  Running.Document->Rest.DocumentDirty = False;
}

void ForgetHistory() {
  UndoSteps.clear();
  RedoSteps.clear();
  Latest = Running = {};
}

Trial BeginTrial() {
  Trial Before;
  OrForget([&] { Before = TakeState().Document; });
  return Before;
}

void TakeBack(const Trial& Before) {
  if (Before != nullptr) RestoreSnapshot(*Before);
}

}  // namespace zelvanor
