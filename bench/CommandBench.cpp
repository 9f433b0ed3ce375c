#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>

// Whole commands of zelvanor-batch, process start included: an empty script, and the coupling table at its largest. The
// promises are 30 ms, and 1 s with 400 MiB.

namespace {

namespace fs = std::filesystem;

constexpr int LargestCount = 2340;  // of NMR atoms
constexpr double KibPerMib = 1024;

struct ScriptFolder {
  fs::path Folder = fs::temp_directory_path() / ("zelvanor-commands-" + std::to_string(getpid()));
  ScriptFolder() { fs::create_directories(Folder); }
  ~ScriptFolder() { fs::remove_all(Folder); }
  std::string Write(const char* Name, const std::string& Content) const {
    std::ofstream(Folder / Name, std::ios::binary) << Content;
    return (Folder / Name).string();
  }
};

const ScriptFolder& Folder() {
  static const ScriptFolder Scripts;
  return Scripts;
}

std::string CouplingDocument() {
  std::string Content = "NMRSelectionBegin\r\n" + std::to_string(LargestCount) + "\r\n";
  for (int Atom = 1; Atom <= LargestCount; ++Atom) Content += "mol 1 atom " + std::to_string(Atom) + "\r\n";
  Content +=
      "NMRSelectionEnd\r\nQuantumSelectionBegin\r\n0\r\nQuantumSelectionEnd\r\nEquivalentAtomsBegin\r\n"
      "EquivalentAtomsEnd\r\nLabelledAtomsBegin\r\n0\r\nLabelledAtomsEnd\r\nNMRAtomicNumbersBegin\r\n";
  for (int Atom = 1; Atom <= LargestCount; ++Atom) Content += "1 ";
  Content += "\r\nNMRAtomicNumbersEnd\r\nShieldingCouplingBegin\r\nCOUPLING\r\n";
  for (int Row = 1; Row <= LargestCount; ++Row) {
    for (int Column = 1; Column <= LargestCount; ++Column) {
      Content += Row == Column ? "0 " : std::to_string((Row * Column) % 190) + ".25 ";
    }
    Content += "\r\n";
  }
  return Content + "ShieldingCouplingEnd\r\n";
}

// Runs the script; its exit status and memory come with it. The peak is that of all runs in this process so far.
void RunScript(benchmark::State& State, const std::string& Script) {
  for (auto _ : State) {
    const auto Begin = std::chrono::steady_clock::now();
    const pid_t Child = fork();
    if (Child == 0) {
      if (std::freopen("/dev/null", "w", stdout) != nullptr) {
        execl(ZELVANOR_BATCH_PROGRAM, ZELVANOR_BATCH_PROGRAM, Script.c_str(), nullptr);
      }
      _exit(127);
    }
    int Status = 0;
    rusage Used{};
    wait4(Child, &Status, 0, &Used);
    State.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count());
    if (!WIFEXITED(Status) || WEXITSTATUS(Status) != 0) State.SkipWithError("the script failed");
    State.counters["MiB"] = static_cast<double>(Used.ru_maxrss) / KibPerMib;
  }
}

void EmptyScript(benchmark::State& State) { RunScript(State, Folder().Write("empty.txt", "")); }

void LargestCouplingTable(benchmark::State& State) {
  const std::string Document = Folder().Write("couplings.NMR", CouplingDocument());
  Folder().Write("win.ini", "[Zelvanor]\nNMRExePath=" + Folder().Folder.string() + "\n");
  setenv("ZELVANOR_WIN_INI", (Folder().Folder / "win.ini").c_str(), 1);
  const std::string Script = Folder().Write("couplings.txt", "start\nfile " + Document +
                                                                 "\nclick mnuFileOpen\nclick mnuViewCoupling\n"
                                                                 "expect ShieldTable.Rows = 2341\n"
                                                                 "expect ShieldTable.Cell(2,1) = 2.250\n");
  RunScript(State, Script);
}

BENCHMARK(EmptyScript)->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(LargestCouplingTable)->Unit(benchmark::kMillisecond)->UseManualTime();

}  // namespace
