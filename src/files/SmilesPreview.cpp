#include "files/SmilesPreview.h"

#include "files/Converter.h"
#include "files/StructureDrawing.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"

namespace zelvanor {

namespace {

constexpr int TypingMilliseconds = 300;
constexpr int LookMilliseconds = 30;

Sketch Shown;
Long Asked = 0;    // counts what was asked for: a look for what came before ends
Long Running = 0;  // the handle of the converter

// The picture stays while what is typed makes no sense yet.
void ShowProblem(const SmilesPreview& Where, const Text& Words) { SetCaption(*Where.Said, Words); }

void ShowDrawing(const SmilesPreview& Where, Sketch Made, const Text& Words) {
  Shown = std::move(Made);
  Where.Picture->Description = Words;
  DrawStructure(*Where.Picture, Shown);
  SetCaption(*Where.Said, Words);
}

void Look(const SmilesPreview& Where, Long Wanted) {
  if (Wanted != Asked) return;
  const ProcessStatus Status = Platform.GetExitCodeProcess(Running);
  if (Status.Known && Status.ExitCode == StillActive) {
    return Platform.RunLater(LookMilliseconds, [Where, Wanted] { Look(Where, Wanted); });
  }
  Running = 0;
  const ConverterAnswer Answer = PreviewAnswer(Status);
  if (Answer.Status != 0) return ShowProblem(Where, Answer.Message);
  Drawing Made = ReadDrawing(ReadWholeFile(PreviewPath()));
  ShowDrawing(Where, std::move(Made.Structure), Made.Formula);
}

void Start(const SmilesPreview& Where, const Text& Smiles, Long Wanted) {
  if (Wanted != Asked) return;
  try {
    Running = StartPreview(Smiles);
  } catch (const Failure& Problem) {
    return ShowProblem(Where, Problem.What);
  }
  Look(Where, Wanted);
}

}  // namespace

void EndPreview() {
  ++Asked;
  if (Running == 0) return;
  Platform.StopProcess(Running);
  for (ProcessStatus Status{true, StillActive}; Status.Known && Status.ExitCode == StillActive;) {
    Status = Platform.GetExitCodeProcess(Running);
  }
  Running = 0;
}

void PreviewSmiles(const SmilesPreview& Where, const Text& Smiles) {
  EndPreview();
  if (Smiles.empty()) return ShowDrawing(Where, {}, "");
  Platform.RunLater(TypingMilliseconds, [Where, Smiles, Wanted = Asked] { Start(Where, Smiles, Wanted); });
}

void RedrawPreview(const SmilesPreview& Where) { DrawStructure(*Where.Picture, Shown); }

}  // namespace zelvanor
