#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "basic/Numbers.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"
#include "settings/SettingsState.h"
#include "shell/Frame.h"
#include "spectrum/SpectrumView.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

// The vocabulary of the tests: a program without a window whose boxes, dialogs and status texts are written down, and
// files in a folder of the test process.
namespace zelvanor::test {

using Texts = std::vector<Text>;

// Everything the program has shown or asked since the last reset.
struct Record {
  Texts Boxes;     // "warning TEXT", "error TEXT" (without the prefix that every such text has), "question TEXT"
  Texts Statuses;  // as the status line shows them, with the blank in front
  std::vector<FileDialog> Dialogs;
  std::vector<MessageBox> RawBoxes;
  Texts Helps;  // "file command page"
  std::vector<MousePointer> Pointers;

  // What is answered next; without an answer boxes and dialogs are cancelled.
  std::deque<BoxAnswer> Answers;
  std::deque<std::optional<Text>> Files;
};
Record& Shown();
// All boxes in one text, " | " between them.
Text Boxes();

// The whole state as a process has it before start-up, but for the reference elements; the record is empty.
void ResetProgram();

// Each test starts with a fresh program and an empty folder, and leaves no file open behind it.
class ProgramTest : public testing::Test {
 protected:
  ProgramTest();
  void TearDown() override;
};

Text TempPath(const Text& Name);
Text WriteFile(const Text& Name, TextView Content);  // in the folder of the test process; returns its path
Text MakeFolder(const Text& Name);
Text ReadBytes(const Text& Path);
bool Exists(const Text& Path);

// While it lives no file of this process can grow beyond Bytes: the same as a disk that is full.
class FullDisk {
 public:
  explicit FullDisk(unsigned Bytes);
  ~FullDisk();
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

 private:
  rlimit Former{};
};

// The pieces of a text between its bars.
Texts Pieces(TextView Packed);
// Lines, each with its CR LF.
Text JoinLines(const Texts& Lines);
Texts SplitLines(TextView Content);
// The text with the first From replaced by To; a From that is not there fails the test.
Text Change(Text Content, TextView From, TextView To);

// The failure that a call throws, or "no failure".
Text FailureOf(const std::function<void()>& Call);
// Whether the call ended the program.
bool EndsProgram(const std::function<void()>& Call);

// The value of one of the program's variables by its name.
Text VariableText(const Text& Name);

// Checks variables by name: "NumAtoms=3 NMRAtom(1)=2 Coupling(0,2)=-2.5". What heads the message of a difference.
void ExpectValues(const Text& Values, const Text& What = "");

// Opens Content as the file that the section readers work on.
Integer OpenContent(TextView Content);

// Values of the first Count elements.
template <class T>
std::vector<T> FirstOf(const Array<T>& Values, int Count) {
  std::vector<T> Result;
  for (int Index = 0; Index < Count; ++Index) Result.push_back(Values[Index]);
  return Result;
}
std::vector<int> Numbers(const Array<Integer>& Values, int Count);

void SetArray(Array<Integer>& Target, const std::vector<int>& Values);
void SetArray(Array<Single>& Target, const std::vector<double>& Values);
// A square matrix by rows.
void SetMatrix(Array2<Single>& Target, const std::vector<std::vector<double>>& Rows);
// Peaks by frequency and intensity, degeneracy 1 and width 0.5.
void SetPeaks(const std::vector<std::pair<double, double>>& Peaks);

}  // namespace zelvanor::test
