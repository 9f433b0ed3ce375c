#include "predict/Task.h"

#include <unistd.h>

#include <chrono>

#include "files/Converter.h"
#include "files/FileCommands.h"
#include "onestep/PredictSpectrum.h"
#include "pictures/ViewPictures.h"
#include "platform/Paths.h"
#include "platform/Profile.h"
#include "platform/TextFiles.h"
#include "platform/posix/PosixServices.h"
#include "predict/Outputs.h"
#include "program.h"
#include "settings/SettingsState.h"
#include "shell/MainForm.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor::predict {

namespace {

WorkspaceState& W = Workspace;

// What the program has said in its boxes: the reason of a failure.
Text Said;

BoxAnswer TakeBox(const MessageBox& Box) {
  Text Message = Box.Message;
  const Text Prefix = Box.Kind == BoxKind::Warning ? "WARNING: " : "ERROR: ";
  if (Message.starts_with(Prefix)) Message.erase(0, Prefix.size());
  if (Box.Buttons == BoxButtons::Ok) {
    if (Said.empty()) Said = Message;
    return BoxAnswer::Ok;
  }
  return Box.Buttons == BoxButtons::OkCancel ? BoxAnswer::Ok : BoxAnswer::Yes;
}

Text Reason(const char* Otherwise) {
  Text Message = Said.empty() ? Text(Otherwise) : Said;
  for (char& C : Message) {
    if (static_cast<unsigned char>(C) < 0x20) C = ' ';
  }
  if (Message.ends_with(".")) Message.pop_back();
  return Message;
}

// The user's options of the backend go along, but for the engine: that is the command line's.
void ChooseEngine(const Options& Given, const Text& Folder, const Text& UserFile) {
  if (!Given.Quantum) return;
  const Text File = Folder + "/nmrback.ini";
  if (IsSet(FileExists(UserFile))) WriteWholeFile(File, ReadWholeFile(UserFile));
  if (!WritePrivateProfileStrings({{"backend", "ShieldingEngine", "nwchem"}}, File)) {
    throw Failure(File + " can't be written");
  }
}

void UseFolder(const Options& Given, const Text& Folder) {
  ChooseEngine(Given, Folder, Settings.BackendFile);
  Settings.BackendFile = Folder + "/nmrback.ini";
  Settings.ParamReferenceFile = Folder + "/nmrparam.ref";
  Settings.NMRIniPath = Folder;
  Settings.ParamInputFile = Folder + "/nmrparam.in";
  Settings.ParamOutputFile = Folder + "/nmrparam.out";
  Settings.ParamErrorFile = Folder + "/nmrparam.err";
  Settings.SpectInputFile = Folder + "/nmrspect.in";
  Settings.SpectOutputFile = Folder + "/nmrspect.out";
}

void OpenOwnFile(const Text& Path) {
  Platform.ShowFileDialog = [Path](const FileDialog&) { return std::optional<Text>(Path); };
  mnuFileOpen_Click();
  if (!IsSet(W.MoleculeLoaded)) throw Failure(Reason("there is no molecule in it"));
}

// "... record 1 (TITLE): REASON".
Text ReasonOf(const Text& Message, const Text& Title) {
  const Text Head = "record 1" + (Title.empty() ? Text() : " (" + Title + ")") + ": ";
  const std::size_t Place = Message.find(Head);
  return Place == Text::npos ? Message : Message.substr(Place + Head.size());
}

void ConvertRecord(const Options& Given, const Molecule& One, const Text& Folder) {
  if (!One.Record.Problem.empty()) throw Failure(One.Record.Problem);
  const Text Source = Folder + "/record." + convert::EndingOfKind(One.Kind);
  const Text Title =
      One.Kind == convert::FileKind::Smiles && !One.Record.Title.empty() ? " " + One.Record.Title : Text();
  Text Content = One.Record.Content;
  if (!Title.empty()) Content = Content.substr(0, Content.find('\n')) + Title + "\n";
  WriteWholeFile(Source, Content);
  const Text Output = Folder + "/record.mvs";
  const Text Origin = One.Input + ", record " + std::to_string(One.Record.Number);
  const ConverterAnswer Answer =
      RunConverter({"--time", std::to_string(Given.Seconds), "--source", Origin, "--", Source}, Output);
  if (Answer.Status != 0) throw Failure(ReasonOf(Answer.Message, One.Record.Title));
  if (!IsSet(ReadConverted(Output, Output))) throw Failure(Reason("it can't be read"));
  W.MoleculeLoaded = True;
  W.HostTextPath = Source;
  W.DocumentTitle = UpperCase(One.Name);
}

void Compute(const Options& Given) {
  const Nucleus& Observed = *Given.Observed;
  if (!SetUpNucleus(Observed, Given.MHz)) throw Failure(Text("there is no ") + Observed.Name + " in it");
  const int Wanted = Observed.SpinHalf ? 2 : 1;
  if (ComputeNucleus(Observed) < Wanted) throw Failure(Reason("the backend has given no result"));
}

}  // namespace

void StartProgram() {
  UsePosixServices();
  Platform.ShowBox = TakeBox;
  Platform.WriteViewPicture = pictures::WriteViewPicture;
  Platform.ControlChanged = [](Control&, Property) {};
  Platform.OtherInstanceRuns = [] { return false; };
  Platform.DoEvents = [] {
    if (AnyProcessRuns()) usleep(1000);
  };
  BuildProgram();
  Main.frmNMR.Width = TwipsFromPixels(1000);
  Main.frmNMR.Height = TwipsFromPixels(600);
  Form_Load("");
  Said.clear();
  if (access(Settings.CalcExeFile.c_str(), X_OK) != 0) {
    throw Failure("the backend " + Settings.CalcExeFile + " is not installed");
  }
}

std::vector<Text> FilesOf(const Options& Given, const Text& Name) {
  const Text Head = Name + "." + Given.Observed->Name + ".";
  std::vector<Text> Files = {Head + "shifts.csv", Head + "couplings.csv"};
  for (const Text& Format : Given.Formats) {
    if (Given.Observed->SpinHalf || !ShowsLines(Format)) Files.push_back(Head + Format);
  }
  return Files;
}

Result ComputeMolecule(const Options& Given, const Molecule& One, const Text& Folder) {
  const auto Start = std::chrono::steady_clock::now();
  const auto Used = [&] { return std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count(); };
  Result Made;
  try {
    UseFolder(Given, Folder);
    if (One.Path.empty()) {
      ConvertRecord(Given, One, Folder);
    } else {
      OpenOwnFile(One.Path);
    }
    Compute(Given);
    Outputs Numbers = CollectOutputs(Given);
    WriteOutputs(Given, Numbers, Folder + "/" + One.Name + "." + Given.Observed->Name + ".");
    const Double Seconds = Used();
    Made.Numbers = Join(W.NumAtoms, ",", W.NumNMRAtoms, ",", static_cast<Long>(Numbers.Lines.size()), ",",
                        FormatNumber(Seconds, "0.00"));
    Made.Json = JsonOf(Given, One.Name, Numbers, Seconds);
  } catch (const Failure& Problem) {
    Made.Failed = true;
    Made.Message = Problem.What;
    Made.Json = FailedJson(Given, One.Name, Problem.What, Used());
  }
  return Made;
}

}  // namespace zelvanor::predict
