#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

// A mouse mode, its toolbar button and the hint that the status line gives when it is chosen.
struct MouseTool {
  int Button;
  int Mode;
  const char* Hint;
};

constexpr MouseTool MouseTools[] = {
    {ToolRotate, RotateMode, "L-drag for 3-D rotation, R-drag for in-plane rotation."},
    {ToolSelect, SelectMode, "L-click to select, R-click to unselect."},
    {ToolTranslate, TranslateMode, "L-drag mouse to translate, R-drag mouse vertically to magnify."},
};

void ChooseMouseTool(const MouseTool& Chosen) {
  Main.MouseMode = Chosen.Mode;
  ShowStatus(Chosen.Hint);
  for (const MouseTool& Tool : MouseTools) {
    SetPressed(Main.picToolbar[Tool.Button], ToFlag(Tool.Button == Chosen.Button));
  }
}

void ShowSpectrumByButton() {
  mnuViewSpectra_Click();
  if (IsSet(Main.mnuLines.Checked)) return Fire(Rooms.LinesCommand);
  if (IsSet(Main.mnuEnvelop.Checked)) return Fire(Rooms.EnvelopCommand);
  if (IsSet(Main.mnuLinesAndEnvelop.Checked)) return Fire(Rooms.LinesAndEnvelopCommand);
  Fire(Rooms.LinesCommand);
}

}  // namespace

void picToolbar_Click(int Index) {
  switch (Index) {
    case ToolNew:
      return Fire(Main.mnuFileNew.Click);
    case ToolOpen:
      return Fire(Main.mnuFileOpen.Click);
    case ToolSave:
      return Fire(Main.mnuFileSave.Click);
    case ToolGet:
      return Fire(Main.mnuFileGet.Click);
    case ToolMolecule:
      return mnuViewMolecule_Click();
    case ToolShielding:
      return mnuViewShielding_Click();
    case ToolCoupling:
      return mnuViewCoupling_Click();
    case ToolSpectrum:
      return ShowSpectrumByButton();
    default:
      for (const MouseTool& Tool : MouseTools) {
        if (Tool.Button == Index) ChooseMouseTool(Tool);
      }
  }
}

void picToolbar_MouseDown(int Index) { ShowStatus(Main.ToolHelp[Index]); }
void picToolbar_MouseUp(int /*Index*/) { ShowStatus(""); }

}  // namespace zelvanor
