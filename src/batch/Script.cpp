#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <istream>
#include <new>

#include "basic/NumberText.h"
#include "basic/TextTools.h"
#include "batch/Batch.h"
#include "history/Recovery.h"

namespace zelvanor::batch {

BatchState State;

namespace {

// Commands that still make sense once the program has ended itself.
bool WorksAfterEnd(TextView Command) {
  return Command == "print" || Command == "get" || Command == "expect" || Command == "echo";
}

// ${NAME} gives way to the environment variable of that name, nothing where there is none.
Text ReplaceVariables(TextView Line) {
  Text Result;
  for (;;) {
    const std::size_t Open = Line.find("${");
    const std::size_t Close = Open == TextView::npos ? Open : Line.find('}', Open);
    if (Close == TextView::npos) return Result.append(Line);
    Result.append(Line.substr(0, Open));
    const char* Value = std::getenv(Text(Line.substr(Open + 2, Close - Open - 2)).c_str());
    if (Value != nullptr) Result.append(Value);
    Line.remove_prefix(Close + 1);
  }
}

char UnescapedChar(char Escape) {
  switch (Escape) {
    case 't':
      return '\t';
    case 'r':
      return '\r';
    case 'n':
      return '\n';
    case 'b':
      return '\b';
    case '"':
    case '\\':
      return Escape;
    default:
      throw ScriptStop{CannotCarryOut, Text("unknown escape \\") + Escape};
  }
}

// Place stands on the opening quote and is left behind the closing one.
Text TakeQuoted(TextView Line, std::size_t& Place) {
  Text Value;
  for (++Place; Place < Line.size(); ++Place) {
    if (Line[Place] == '"') {
      ++Place;
      return Value;
    }
    if (Line[Place] == '\\' && Place + 1 < Line.size()) {
      Value += UnescapedChar(Line[++Place]);
    } else {
      Value += Line[Place];
    }
  }
  throw ScriptStop{CannotCarryOut, "a quoted text has no end"};
}

void RunLine(TextView Line) {
  const std::vector<Argument> Words = SplitArguments(ReplaceVariables(Line));
  if (Words.empty()) return;
  if (State.Ended && !WorksAfterEnd(Words[0].Value)) {
    throw ScriptStop{CannotCarryOut, "the program has ended: " + Words[0].Value};
  }
  try {
    RunCommand(Words);
  } catch (const Failure& Problem) {
    // What no routine of the program has caught, or a number of the script that is none.
    throw ScriptStop{CannotCarryOut, Problem.What};
  } catch (const std::bad_alloc&) {
    throw ScriptStop{CannotCarryOut, failures::OutOfMemory};
  } catch (const ProgramEnded&) {
    State.Ended = true;
    PrintOut("ended");
  }
  KeepWorkAtTimes();
  if (State.AfterLine) State.AfterLine();
}

}  // namespace

void PrintOut(TextView Line) {
  std::fwrite(Line.data(), 1, Line.size(), stdout);
  std::fputc('\n', stdout);
  // Nobody would see what the rest of the script does.
  if (std::fflush(stdout) != 0) throw ScriptStop{CannotCarryOut, "can't write to standard output"};
}

Text Escaped(TextView Value) {
  Text Result = "\"";
  for (const char C : Value) {
    const std::size_t Kind = TextView("\t\r\n\b\"\\").find(C);
    if (Kind == TextView::npos) {
      Result += C;
    } else {
      Result += '\\';
      Result += TextView("trnb\"\\")[Kind];
    }
  }
  return Result + "\"";
}

std::vector<Argument> SplitArguments(TextView Line) {
  std::vector<Argument> Words;
  std::size_t Place = 0;
  while ((Place = Line.find_first_not_of(LineSeparators, Place)) != TextView::npos) {
    if (Words.empty() && Line[Place] == '#') return {};
    if (Line[Place] == '"') {
      Words.push_back({TakeQuoted(Line, Place), true});
    } else {
      const std::size_t End = std::min(Line.find_first_of(LineSeparators, Place), Line.size());
      Words.push_back({Text(Line.substr(Place, End - Place)), false});
      Place = End;
    }
  }
  return Words;
}

ExitStatus ReportStop(const ScriptStop& Stop) {
  if (!Stop.Reason.empty()) std::fprintf(stderr, "line %d: %s\n", State.LineNumber, Stop.Reason.c_str());
  return Stop.Status;
}

void RunScript(const Form* Until) {
  Text Line;
  while ((Until == nullptr || IsSet(Until->Visible)) && std::getline(*State.Script, Line)) {
    ++State.LineNumber;
    RunLine(Line);
    // Inside a modal form the rest of the command that opened it ends with the program.
    if (State.Ended && Until != nullptr) throw ProgramEnded();
  }
}

ExitStatus RunWholeScript(std::istream& Script, const Text& CommandLine) {
  State.Script = &Script;
  State.CommandLine = CommandLine;
  try {
    RunScript(nullptr);
  } catch (const ScriptStop& Stop) {
    return ReportStop(Stop);
  }
  return State.Status;
}

}  // namespace zelvanor::batch
