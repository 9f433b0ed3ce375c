// Files of measured spectra: those that are told by their content, the folders of spectrometers, whose parameters and
// points the input holds one behind the other, and signals that are assigned to atoms.

#include <filesystem>

#include "backend/PeakMap.h"
#include "files/DocumentReader.h"
#include "fuzz/Harness.h"
#include "fuzz/Targets.h"
#include "measured/MeasuredCommands.h"
#include "measured/MeasuredTrace.h"
#include "report/ReadNmreData.h"
#include "report/Report.h"
#include "workspace/Workspace.h"

namespace zelvanor::fuzz {

namespace {

// Takes a spectrum in by the command, looks at it, and makes it anew as the dialog does.
bool TakeIn(const Text& Path) {
  const bool Taken = OpenMeasured(Path);
  CheckPromises();
  Demand(Taken == HasMeasured(), "the command does not say what it did");
  if (!Taken || Workspace.MeasuredCount > 5000) return Taken;
  LookAround();
  try {
    Processing By = PresentProcessing();
    By.Phase0 += 10;
    By.BaselineOrder = 2;
    ReprocessMeasured(By);
  } catch (const Failure&) {
    Demand(HasMeasured(), "a failed change has taken the spectrum away");
  }
  CheckRoundTrip();
  return Taken;
}

}  // namespace

bool TryMeasuredFile(TextView Input) {
  ResetProgram();
  return TakeIn(WriteInput("measured", Input));
}

bool TryMeasuredFolder(TextView Input) {
  ResetProgram();
  constexpr TextView End = "##END=\n";
  const std::size_t Place = Input.find(End);
  const std::size_t Points = Place == TextView::npos ? Input.size() : Place + End.size();
  std::filesystem::create_directory(PathOf("sample"));
  const bool Fid = Input.starts_with("F");
  for (const char* Name : {"1r", "procs", "fid", "acqus"}) std::filesystem::remove(PathOf(Text("sample/") + Name));
  WriteInput(Fid ? "sample/acqus" : "sample/procs", Input.substr(0, Points));
  WriteInput(Fid ? "sample/fid" : "sample/1r", Input.substr(Points));
  return TakeIn(PathOf("sample"));
}

// The fields of a record whose molecule is there already.
bool TryNmreData(TextView Input) {
  ResetProgram();
  Demand(IsSet(ReadDocument(SourceFile("examples/ethanol.NMR"))), "the example can't be read");
  try {
    TakeNmreData(Text(Input));
  } catch (const Failure&) {
    return false;
  }
  Demand(Workspace.NumAssigned > 0, "an assignment without atoms has been taken");
  BuildPublicationText();
  TakeNmreData(BuildNmreData());
  LookAround();
  CheckRoundTrip();
  return true;
}

bool TryPeakMap(TextView Input) {
  ResetProgram();
  Demand(IsSet(ReadDocument(SourceFile("examples/ethanol.NMR"))), "the example can't be read");
  std::filesystem::copy_file(WriteInput("map", Input), PeakMapPath(),
                             std::filesystem::copy_options::overwrite_existing);
  ReadPeakMap();
  const bool Taken = Workspace.PeakSiteLines > 0;
  LookAround();
  CheckRoundTrip();
  RemovePeakMap();
  return Taken;
}

}  // namespace zelvanor::fuzz
