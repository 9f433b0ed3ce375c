#include "morvantis-sim/Simulator.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>

#include "hostbus/BusNames.h"

namespace zelvanor::morvantis_sim {

namespace {

constexpr const char* HostWord = "MORVANTIS";

bool Begins(const Text& Asked, const Text& Beginning) { return !Beginning.empty() && Asked.starts_with(Beginning); }

// The faults that a test has ordered.
void FailAsTold(const Options& Given, const Text& Asked) {
  constexpr int DeathStatus = 9;
  if (Begins(Asked, Given.DieAt)) _exit(DeathStatus);
  while (Begins(Asked, Given.HangAt)) pause();
}

void PrintLog(const Simulator& Sim, const Text& Line) {
  if (!Sim.Given.Log) return;
  std::printf("%s\n", Line.c_str());
  std::fflush(stdout);
}

// Runs one step of a partner's conversation in the state that it has reached.
Text Converse(Simulator& Sim, const Text& Partner, const Text& Asked, const Text& Shown,
              const std::function<Text()>& Step) {
  FailAsTold(Sim.Given, Asked);
  Sim.Host.AnswersHaveTag = Sim.AnswersHaveTag.try_emplace(Partner, true).first->second;
  try {
    Text Answer = Step();
    Sim.AnswersHaveTag[Partner] = Sim.Host.AnswersHaveTag;
    PrintLog(Sim, Shown + (Answer.empty() ? "" : ": " + Answer));
    return Answer;
  } catch (const Failure& Problem) {
    PrintLog(Sim, Shown + " refused: " + Problem.What);
    throw;
  }
}

Text OwnFolder() {
  std::array<char, 4096> Buffer{};
  const ssize_t Length = readlink("/proc/self/exe", Buffer.data(), Buffer.size());
  const Text Path(Buffer.data(), Length > 0 ? static_cast<std::size_t>(Length) : 0);
  return Path.substr(0, Path.rfind('/') + 1);
}

}  // namespace

void OpenSimulator(Simulator& Sim, Options Given) {
  Sim.Given = std::move(Given);
  hostsim::LoadSystem(Sim.Host, hostsim::ReadHostSystemFile(Sim.Given.File));
  if (Sim.Given.Method) Sim.Host.Method = *Sim.Given.Method;
  Sim.Host.Named = Sim.Given.Selections;
  Sim.Host.Current = Sim.Given.Current;
  Sim.Host.Refused = Sim.Given.Refused;
  Sim.Host.Answers.insert(Sim.Given.Answers.begin(), Sim.Given.Answers.end());
  Simulator* const Serving = &Sim;
  Sim.Server = hostbus::OpenServer(hostbus::HostApplication, hostbus::Topic,
                                   {[Serving](const Text& Partner, const Text& Command) {
                                      Converse(*Serving, Partner, Command, "execute " + Command, [Serving, &Command] {
                                        hostsim::ExecuteCommand(Serving->Host, Command);
                                        return Text();
                                      });
                                    },
                                    [Serving](const Text& Partner, const Text& Item) {
                                      return Converse(*Serving, Partner, Item, "request " + Item, [Serving, &Item] {
                                        return hostsim::AnswerItem(Serving->Host, Item);
                                      });
                                    }});
}

void StartProgram(Simulator& Sim) {
  std::vector<Text> Words = Sim.Given.Start;
  if (Words.empty()) return;
  // A bare name is the program that stands beside this one, if there is one.
  const Text Beside = OwnFolder() + Words[0];
  if (Words[0].find('/') == Text::npos && access(Beside.c_str(), X_OK) == 0) Words[0] = Beside;
  Words.emplace_back(HostWord);
  std::vector<char*> Arguments;
  Arguments.reserve(Words.size() + 1);
  for (Text& Word : Words) Arguments.push_back(Word.data());
  Arguments.push_back(nullptr);
  const int Outcome = posix_spawnp(&Sim.Started, Arguments[0], nullptr, nullptr, Arguments.data(), environ);
  if (Outcome != 0) throw Failure("Can't start " + Words[0] + ": " + FailureTextFromErrno(Outcome));
}

std::optional<int> StatusOfEnded(Simulator& Sim) {
  int Status = 0;
  if (Sim.Started == 0 || waitpid(Sim.Started, &Status, WNOHANG) != Sim.Started) return {};
  constexpr int SignalBase = 128;
  return WIFEXITED(Status) ? WEXITSTATUS(Status) : SignalBase + WTERMSIG(Status);
}

}  // namespace zelvanor::morvantis_sim
