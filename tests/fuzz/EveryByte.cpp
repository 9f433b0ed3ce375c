// Every truncation and every change of a single byte of every example file, each through its reader. Without arguments
// all of them; with "sample N" every N-th, spread evenly; with "seeds" the files as they are: each has to be taken or
// refused as its name says. A word behind that picks the files whose name holds it.

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

#include "basic/Numbers.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "workspace/Helpers.h"

extern "C" void __sanitizer_set_death_callback(void (*Callback)());  // NOLINT(bugprone-reserved-identifier)

namespace zelvanor::fuzz {

namespace {

namespace fs = std::filesystem;

// Seconds that one input may take.
constexpr unsigned LongestRun = 10;

struct FileKind {
  const char* Folder;
  const char* Ending;
  const char* Reader;
  bool Taken;  // by its reader, as it stands
};

const FileKind Kinds[] = {
    {"examples", ".NMR", "Document", true},
    {"examples", ".mvs", "HostText", true},
    {"examples", ".zmt", "ZMatrix", true},
    {"examples", ".ini", "Settings", true},
    {"examples", "spectrum.txt", "Script", true},
    {"examples", "from-host.txt", "Script", false},  // nobody is on the bus
    {"data", ".rul", "TypeRules", true},
    {"data", "nmrtype.txt", "TypeFile", true},
    {"data", "ambertype.txt", "TypeFile", false},  // the rules name other types
    {"data", ".abp", "BackendTables", true},
};

struct Example {
  Text Path;
  const Target* Reader;
  bool Taken;
};

// What is at work, for the message of a death, which may come after the last of main.
struct Work {
  Text Name;
  Text What;
};
Work& Present() {
  static Work& Only = *new Work;
  return Only;
}

void TellPresent() { std::fprintf(stderr, "%s, %s\n", Present().Name.c_str(), Present().What.c_str()); }

void DieOfTime(int /*Signal*/) {
  TellPresent();
  constexpr char Words[] = "the input takes too long\n";
  if (write(STDERR_FILENO, Words, std::strlen(Words)) < 0) _exit(2);
  _exit(1);
}

std::vector<Example> ListExamples(const Text& Wanted) {
  std::vector<Example> Result;
  for (const FileKind& Kind : Kinds) {
    for (const fs::directory_entry& Entry : fs::directory_iterator(SourceFile(Kind.Folder))) {
      if (Entry.path().string().ends_with(Kind.Ending))
        Result.push_back({Entry.path().string(), FindTarget(Kind.Reader), Kind.Taken});
    }
  }
  for (const Target& Reader : AllTargets) {
    const Text Seeds = SourceFile(Join("tests/fuzz/seeds/", Reader.Name));
    if (!fs::is_directory(Seeds)) continue;
    for (const fs::directory_entry& Entry : fs::directory_iterator(Seeds)) {
      const Text Name = Entry.path().filename().string();
      Result.push_back({Entry.path().string(), &Reader, Name.starts_with("ok-")});
    }
  }
  std::erase_if(Result, [&](const Example& Each) { return Each.Path.find(Wanted) == Text::npos; });
  std::sort(Result.begin(), Result.end(), [](const Example& A, const Example& B) { return A.Path < B.Path; });
  return Result;
}

// The values that a byte is changed to.
constexpr std::size_t NumChanges = 10;
char ChangedByte(char Former, std::size_t Change) {
  constexpr TextView Values("\0\xFF \n-9", 6);
  if (Change < Values.size()) return Values[Change];
  switch (Change - Values.size()) {
    case 0:
      return Former >= '0' && Former < '9' ? static_cast<char>(Former + 1) : '0';
    case 1:
      return static_cast<char>(Former ^ 1);
    case 2:
      return static_cast<char>(Former ^ 0x20);
    default:
      return static_cast<char>(Former ^ 0x80);
  }
}

// One truncation and the changes for each byte.
std::size_t NumInputs(const Text& Content) { return Content.size() * (NumChanges + 1); }

Text MakeInput(const Text& Content, std::size_t Number) {
  const std::size_t Place = Number / (NumChanges + 1);
  const std::size_t Change = Number % (NumChanges + 1);
  if (Change == NumChanges) return Content.substr(0, Place);
  Text Changed = Content;
  Changed[Place] = ChangedByte(Content[Place], Change);
  return Changed;
}

bool RunInput(const Example& Each, const Text& Input, Text What) {
  Present() = {Each.Path, std::move(What)};
  alarm(LongestRun);
  const bool Taken = Each.Reader->Try(Input);
  alarm(0);
  return Taken;
}

// The number of wrong verdicts.
int CheckVerdicts(const std::vector<Example>& Examples) {
  int Wrong = 0;
  for (const Example& Each : Examples) {
    if (RunInput(Each, ReadBack(Each.Path), "as it stands") == Each.Taken) continue;
    std::fprintf(stderr, "%s is %s by %s\n", Each.Path.c_str(), Each.Taken ? "refused" : "taken", Each.Reader->Name);
    ++Wrong;
  }
  return Wrong;
}

void RunChanges(const std::vector<Example>& Examples, std::size_t Stride) {
  std::size_t Next = 0;
  std::size_t Taken = 0;
  std::size_t Refused = 0;
  for (const Example& Each : Examples) {
    const Text Content = ReadBack(Each.Path);
    for (; Next < NumInputs(Content); Next += Stride) {
      const Text What = Join("change ", Long{static_cast<int>(Next)});
      ++(RunInput(Each, MakeInput(Content, Next), What) ? Taken : Refused);
    }
    Next -= NumInputs(Content);
    if (Stride == 1) std::fprintf(stderr, "%s\n", Each.Path.c_str());
  }
  std::fprintf(stderr, "%zu changed files, %zu taken, %zu refused\n", Taken + Refused, Taken, Refused);
}

int Run(std::vector<Text> Words) {
  bool Seeds = false;
  std::size_t Stride = 1;
  if (!Words.empty() && Words[0] == "seeds") {
    Seeds = true;
    Words.erase(Words.begin());
  } else if (Words.size() > 1 && Words[0] == "sample") {
    Stride = static_cast<std::size_t>(std::max(StrictLong(Words[1]), Long{1}));
    Words.erase(Words.begin(), Words.begin() + 2);
  }
  const std::vector<Example> Examples = ListExamples(Words.empty() ? Text() : Words[0]);
  if (Examples.empty()) {
    std::fprintf(stderr, "there are no such files\n");
    return 1;
  }
  std::signal(SIGALRM, DieOfTime);
  std::signal(SIGABRT, [](int /*Signal*/) { TellPresent(); });
  __sanitizer_set_death_callback(TellPresent);
  if (Seeds) return CheckVerdicts(Examples) == 0 ? 0 : 1;
  RunChanges(Examples, Stride);
  return 0;
}

}  // namespace

}  // namespace zelvanor::fuzz

int main(int Count, char** Words) { return zelvanor::fuzz::Run({Words + 1, Words + Count}); }
