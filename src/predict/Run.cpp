#include "predict/Run.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "files/Converter.h"
#include "platform/Profile.h"
#include "platform/TextFiles.h"
#include "predict/Bar.h"
#include "predict/Finished.h"
#include "predict/Jobs.h"
#include "predict/Outputs.h"
#include "settings/SettingsState.h"

namespace zelvanor::predict {

namespace {

namespace fs = std::filesystem;

// A molecule that is done, until those before it are.
struct Done {
  Text Row;      // of the summary
  Text Problem;  // line for standard error
  Text Json;     // file that holds the object; empty for none
  bool Failed = false;
};

struct RunState {
  const Options& Given;
  Walk Molecules;
  Jobs Work;
  FinishedList Finished{};
  Bar Progress{};
  std::map<Long, Done> Waiting{};
  Long Shown = 0;  // molecules whose row is out
  std::FILE* Summary = nullptr;
  bool AnyFailed = false;
};

// Longer than its folder's name is no path here: a folder with a blank in it could not be told to the backend.
Text MakeRoot() {
  const char* Chosen = std::getenv("TMPDIR");
  Text Folder = Chosen != nullptr && *Chosen == '/' && Text(Chosen).find(' ') == Text::npos ? Chosen : "/tmp";
  Folder += "/zelvanor-predict-XXXXXX";
  if (mkdtemp(Folder.data()) == nullptr) throw Failure("no working folder can be made in " + Folder);
  return Folder;
}

void NeedFolder(const Text& Folder) {
  std::error_code Problem;
  fs::create_directories(Folder, Problem);
  if (!fs::is_directory(Folder) || access(Folder.c_str(), W_OK | X_OK) != 0) {
    throw Failure("the folder " + Folder + " can't be written");
  }
}

// Beside its place and renamed when whole.
void Publish(const Text& From, const Text& Folder, const Text& Name) {
  const Text Beside = Folder + "/." + Name + ".part";
  std::error_code Problem;
  fs::copy_file(From, Beside, fs::copy_options::overwrite_existing, Problem);
  if (!Problem) fs::rename(Beside, Folder + "/" + Name, Problem);
  if (!Problem) return;
  const Text Reason = Problem.message();
  fs::remove(Beside, Problem);
  throw Failure(Name + " can't be written: " + Reason);
}

Text RowOf(const Molecule& One, const char* Status, const Result& Made) {
  return CsvCell(One.Input) + "," + std::to_string(One.Record.Number) + "," + One.Name + "," +
         (Made.Failed ? Text(",,,") : Made.Numbers) + "," + Status + "," + CsvCell(Made.Message) + "\n";
}

// What is due in the order of the input goes out.
void ShowWaiting(RunState& State, const Text& Name) {
  for (auto Next = State.Waiting.begin(); Next != State.Waiting.end() && Next->first == State.Shown + 1;
       Next = State.Waiting.erase(Next)) {
    const Done& One = Next->second;
    ++State.Shown;
    std::fputs(One.Row.c_str(), State.Summary);
    if (!One.Problem.empty()) {
      ClearBar(State.Progress);
      std::fputs(One.Problem.c_str(), stderr);
    }
    if (!One.Json.empty()) {
      std::fputs(ReadWholeFile(One.Json).c_str(), stdout);
      std::fflush(stdout);
      fs::remove(One.Json);
    }
  }
  ShowBar(State.Progress, State.Shown, Name);
}

void Finish(RunState& State, const Molecule& One, const char* Status, const Result& Made) {
  Done Row{.Row = RowOf(One, Status, Made), .Problem = {}, .Json = {}, .Failed = Made.Failed};
  if (Made.Failed) {
    State.AnyFailed = true;
    Row.Problem = "zelvanor-predict: " + One.Input + " record " + std::to_string(One.Record.Number) + " (" + One.Name +
                  "): " + Made.Message + "\n";
  }
  if (State.Given.Json) {
    Row.Json = State.Work.Root + "/" + std::to_string(One.Place) + ".json";
    WriteWholeFile(Row.Json, Made.Json + "\n");
  }
  State.Waiting[One.Place] = std::move(Row);
  ShowWaiting(State, One.Name);
}

void TakeJob(RunState& State, const Job& Ended, Result Made) {
  if (!Made.Failed) {
    try {
      for (const Text& File : FilesOf(State.Given, Ended.One.Name)) {
        Publish(Ended.Folder + "/" + File, State.Given.Folder, File);
      }
      AddFinished(State.Finished, State.Given, Ended.One, Made);
    } catch (const Failure& Problem) {
      Made.Failed = true;
      Made.Message = Problem.What;
      Made.Json = FailedJson(State.Given, Ended.One.Name, Problem.What, 0);
    }
  }
  std::error_code Ignored;
  fs::remove_all(Ended.Folder, Ignored);
  Finish(State, Ended.One, Made.Failed ? "failed" : "ok", Made);
}

// The next molecule is started, or passed over. False when there is none.
bool StartNext(RunState& State) {
  Molecule Next;
  if (!NextMolecule(State.Molecules, Next)) return false;
  Result Before;
  if (State.Given.Resume && IsFinished(State.Finished, State.Given, Next, Before)) {
    Finish(State, Next, "resumed", Before);
  } else {
    StartJob(State.Work, std::move(Next));
  }
  return true;
}

// False when a signal has ended it.
bool DoAll(RunState& State) {
  bool More = true;
  for (;;) {
    const auto Free = static_cast<std::size_t>(State.Given.Jobs);
    while (More && State.Work.Running.size() < Free) More = StartNext(State);
    if (State.Work.Running.empty()) return true;
    if (WaitForJobs(State.Work, 200) != 0) return false;
    Job Ended;
    Result Made;
    while (TakeEnded(State.Work, Ended, Made)) {
      TakeJob(State, Ended, Made);
      Made = {};
    }
  }
}

// Of files, where the bar shows how much is left; standard input is read but once.
Long CountMolecules(const Options& Given) {
  Long Count = 0;
  for (const Input& One : Given.Inputs) {
    if (One.Path == "-") return 0;
    if (!One.Smiles.empty()) {
      ++Count;
      continue;
    }
    try {
      convert::RecordSource Source;
      convert::OpenRecords(Source, One.Path);
      convert::Record Next;
      while (convert::NextRecord(Source, Next)) {
        if (Next.Number >= Given.FirstRecord && (Given.LastRecord == 0 || Next.Number <= Given.LastRecord)) ++Count;
      }
    } catch (const Failure&) {
      ++Count;
    }
  }
  return Count;
}

// A program that the user has named for it, or one of those that the backend looks for.
bool HasQuantumEngine() {
  const Text Named = GetPrivateProfileString("backend", "Program", "", Settings.BackendFile);
  if (!Named.empty()) return true;
  const char* const Folders = std::getenv("PATH");
  std::istringstream Listed(Folders == nullptr ? "" : Folders);
  for (Text Folder; std::getline(Listed, Folder, ':');) {
    for (const char* Name : {"/nwchem.mpich", "/nwchem.openmpi", "/nwchem"}) {
      if (access((Folder + Name).c_str(), X_OK) == 0) return true;
    }
  }
  return false;
}

void NeedParts(const Options& Given) {
  if (Given.Quantum && !HasQuantumEngine()) throw Failure("the quantum engine is not installed");
  for (const Text& Format : Given.Formats) {
    if (const Text Problem = WhyNoFormat(Format); !Problem.empty()) throw Failure(Problem);
  }
  if (FindConverter().empty()) throw Failure("the program zelvanor-convert is not installed");
  if (!AnyReadable(Given)) {
    const Input& First = Given.Inputs.front();
    const Text Problem = WhyUnreadable(First.Path);
    throw Failure(First.Path + ": " + (Problem.empty() ? Text("the format of the file is not known") : Problem));
  }
}

// Molecules that were not reached have no row.
void EndSummary(RunState& State, const Text& Path) {
  for (auto& [Place, One] : State.Waiting) std::fputs(One.Row.c_str(), State.Summary);
  if (std::fclose(State.Summary) != 0) throw Failure("summary.csv can't be written");
  Publish(Path, State.Given.Folder, "summary.csv");
}

}  // namespace

ExitStatus RunAll(const Options& Given) {
  StartProgram();
  NeedParts(Given);
  NeedFolder(Given.Folder);
  RunState State{.Given = Given, .Molecules = {Given}, .Work = {Given, MakeRoot(), {}}};
  const Text SummaryPath = State.Work.Root + "/summary.csv";
  ExitStatus Status = AllWell;
  try {
    State.Summary = std::fopen(SummaryPath.c_str(), "we");
    if (State.Summary == nullptr) throw Failure(SummaryPath + " can't be written");
    std::fputs("input,record,name,atoms,nuclei,lines,seconds,status,message\n", State.Summary);
    ReadFinished(State.Finished, Given.Folder);
    State.Progress.Shown = !Given.Quiet && isatty(STDERR_FILENO) != 0;
    if (State.Progress.Shown) State.Progress.Total = CountMolecules(Given);
    BlockSignals();
    if (!DoAll(State)) {
      EndAll(State.Work);
      Status = Interrupted;
    }
    ClearBar(State.Progress);
    EndSummary(State, SummaryPath);
  } catch (...) {
    EndAll(State.Work);
    std::error_code Ignored;
    fs::remove_all(State.Work.Root, Ignored);
    throw;
  }
  std::error_code Ignored;
  fs::remove_all(State.Work.Root, Ignored);
  if (Status == AllWell && (State.AnyFailed || State.Molecules.AnyMissing)) Status = SomeFailed;
  return Status;
}

}  // namespace zelvanor::predict
