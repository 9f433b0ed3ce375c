#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "basic/Types.h"
#include "platform/Chart.h"
#include "platform/Controls.h"

namespace zelvanor {

// What the program asks of the machine and the desktop. A front end fills the slots before start-up; those that are the
// same everywhere (processes, directories) are filled by UsePosixServices.

enum class BoxKind { Warning, Error, Question, Plain };
enum class BoxButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel };
enum class BoxAnswer { Ok = 1, Cancel = 2, Retry = 4, Yes = 6, No = 7 };

struct MessageBox {
  BoxKind Kind = BoxKind::Plain;
  BoxButtons Buttons = BoxButtons::Ok;
  Text Title;
  Text Message;
};

// The common file dialog. Filter holds pairs of name and pattern, all separated by "|"; patterns by ";".
struct FileDialog {
  Text Title;
  Text FileName;  // shown when it comes up
  Text Filter;
  int FilterIndex = 1;
  Text DefaultExtension;
  bool Save = false;
};

enum class MousePointer { Default, Hourglass };

// WinHelp-like commands. Context opens the page that has the number.
enum class HelpCommand { Context = 1, Contents = 3, HelpOnHelp = 4 };

struct ProcessStatus {
  bool Known = false;  // false: the process can't be asked (any more)
  Long ExitCode = 0;
};

// The exit code of a process that still runs.
inline constexpr Long StillActive = 259;

// The number of the failure "no application answers" when a host conversation is opened.
inline constexpr int NoApplicationAnswers = 282;

// The longest that a conversation waits for one answer.
inline constexpr Long LongestWait = 65535;  // tenths of a second

// A conversation with another program: it carries out commands and answers items. Each call blocks until it is answered
// and throws a Failure when the other program refuses, is gone or lets LinkTimeout pass.
struct HostConversation {
  std::function<void(const Text& Topic)> Open;  // "APPLICATION|TOPIC"; number 282: no application answers
  std::function<void()> Close;
  std::function<void(const Text& Command)> Execute;
  std::function<Text(const Text& Item)> Request;
  Long LinkTimeout = -1;  // tenths of a second; -1 is LongestWait
  // Lets other programs open conversations on the main window from now on. Each one asks LinkOpen, which may set
  // Cancel.
  std::function<void(std::function<void(Flag& Cancel)> LinkOpen)> Accept;
};

struct PlatformServices {
  std::function<void(Control& Target, Property What)> ControlChanged;

  std::function<BoxAnswer(const MessageBox& Box)> ShowBox;
  std::function<std::optional<Text>(const FileDialog& Dialog)> ShowFileDialog;  // none: cancelled
  std::function<std::optional<Colour>(Colour Current)> ShowColourDialog;        // none: cancelled
  std::function<void(Form& Target)> RunModal;                                   // until the form is hidden
  std::function<void()> DoEvents;  // serves pending window events; may wait some milliseconds while a process runs
  // Runs a piece of work some time later, while window events are served.
  std::function<void(int Milliseconds, Event Work)> RunLater;
  std::function<void(MousePointer Pointer)> SetPointer;
  std::function<void(const Text& File, HelpCommand Command, int Context)> ShowHelp;
  std::function<Text()> GetClipboard;
  std::function<void(const Text& Value)> SetClipboard;
  std::function<void(const ChartControl& Chart)> SetClipboardPicture;  // as it is drawn

  // Writes what the view shows as .svg, .png or .pdf; a picture of pixels is Scale times as fine. Throws a Failure.
  std::function<void(const Text& Path, Double Scale)> WriteViewPicture;

  // Writes the report of the document as pages of a PDF file. Throws a Failure.
  std::function<void(const Text& Path)> WriteReportPages;

  std::function<Text()> DecimalSeparator;   // of the regional settings
  std::function<bool()> OtherInstanceRuns;  // takes the instance lock as well
  std::function<Text()> ProgramDirectory;   // of the running program, without a separator at its end
  // Makes what a user lacks before the settings are read; what the user has to be told, or empty.
  std::function<Text()> PrepareUserFiles;
  std::function<Text()> WinIniPath;

  // Starts a process, from its program and the arguments behind it; its id; throws a Failure.
  std::function<Long(const std::vector<Text>& Words)> Shell;
  std::function<Long(Long ProcessId)> OpenProcess;  // a handle, 0 for none
  std::function<ProcessStatus(Long Handle)> GetExitCodeProcess;
  std::function<void(Long Handle)> StopProcess;  // with all that it has started; its end is still to be waited for

  HostConversation Host;
};

extern PlatformServices Platform;

// Thrown by EndProgram and passed on by every routine, up to the front end's dispatch of the event.
struct ProgramEnded {};

}  // namespace zelvanor
