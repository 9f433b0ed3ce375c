#pragma once

#include <chrono>
#include <deque>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "basic/Types.h"
#include "platform/Form.h"
#include "platform/Services.h"

namespace zelvanor::batch {

// How a script ended, as the process's exit status.
enum ExitStatus { RanToItsEnd = 0, ExpectationFailed = 1, CannotCarryOut = 2, NoAnswerQueued = 3 };

// Ends the script at once with this status; Reason goes to standard error behind the line's number.
struct ScriptStop {
  ExitStatus Status;
  Text Reason;
};

// One argument of a script line.
struct Argument {
  Text Value;
  bool WasQuoted = false;
};

struct ShownBox {
  Text Kind;
  Text Message;
};

struct BatchState {
  std::istream* Script = nullptr;
  int LineNumber = 0;
  Text CommandLine;  // of the program itself
  bool Started = false;
  bool Ended = false;  // the program has ended itself
  bool KeepGoing = false;
  bool Trace = false;
  ExitStatus Status = RanToItsEnd;

  std::deque<BoxAnswer> Answers;
  std::deque<std::optional<Text>> Files;  // none: the dialog is cancelled
  std::deque<std::optional<Colour>> Colours;
  std::deque<ShownBox> Boxes;  // not yet expected
  Text Clipboard;
  std::multimap<std::chrono::steady_clock::time_point, Event> Later;  // work by the time when it is due
  Text DecimalSeparator = ".";
  bool OtherInstance = false;
  int MouseButton = 0;  // held down on a surface

  std::function<void()> AfterLine;  // for a front end that looks at what a line has done
};

extern BatchState State;

// Runs the script from where it stands; with a form, only until the form is hidden.
void RunScript(const Form* Until);
// Runs the whole script and returns the exit status.
ExitStatus RunWholeScript(std::istream& Script, const Text& CommandLine);

// One line of output, seen at once by whoever reads it.
void PrintOut(TextView Line);
// A text in double quotes with the escapes of scripts.
Text Escaped(TextView Value);
// Splits a script line. Throws ScriptStop for an open quote or an unknown escape.
std::vector<Argument> SplitArguments(TextView Line);

// Carries out one command; throws ScriptStop where it can't.
void RunCommand(const std::vector<Argument>& Words);
std::vector<Text> CommandNames();

// A command: what it runs, how many words it needs behind its name, and whether the program must have started.
struct CommandRow {
  void (*Run)(const std::vector<Argument>& All);
  std::size_t LeastArguments;
  bool NeedsStart;
};
// A further command, of a front end's own.
void AddCommand(const Text& Name, const CommandRow& Row);

// Says on standard error why a script has stopped; its exit status.
ExitStatus ReportStop(const ScriptStop& Stop);

// Fills the slots of Platform for a run without a display.
void UseBatchServices();

// A value as scripts print and compare it: one element, or those of a whole array.
struct ScriptValue {
  std::vector<Text> Elements;
  bool IsText = false;
  bool IsArray = false;
  bool ComparesAsNumber = false;  // a text that may be a number: `expect` takes either form
};

Text PrintedValue(const ScriptValue& Value);
// The variable of a name such as "Coupling[0,1]"; throws ScriptStop for an unknown one.
ScriptValue ReadVariable(const Text& Name);
void AssignVariable(const Text& Name, const Text& Value);
bool IsVariable(const Text& Name);
// A control's property, by "CONTROL.PROPERTY".
ScriptValue ReadProperty(const Text& Name);
// The control of this name; throws ScriptStop for an unknown one.
Control& NeedControl(const Text& Name);

// Compares with what a script line says behind "=": numbers to 7 digits, texts exactly.
bool Matches(const ScriptValue& Actual, const std::vector<Argument>& Expected);

// Writes the picture of the view, or its table as CSV; the ending of the path decides. Throws ScriptStop or a Failure.
void WriteView(const Text& Path);
// Writes the peak list, or with "envelope" or "measured" before the path that curve, as CSV or JCAMP-DX. Throws
// ScriptStop or a Failure.
void SaveSpectrum(const std::vector<Argument>& All);
// The report (.html) or the publication text (.txt).

}  // namespace zelvanor::batch
