#include "shell/StepNames.h"

#include "shell/MainForm.h"

namespace zelvanor {

namespace {

// What undoing a command takes back, where its caption does not say it well; empty: it is no step by itself.
struct StepName {
  MenuItem MainForm::*Item;
  const char* Name;
};

constexpr StepName StepNames[] = {
    {&MainForm::mnuFileNew, "clearing the workspace"},
    {&MainForm::mnuFileOpen, "opening a file"},
    {&MainForm::mnuFileGet, "getting a system"},
    {&MainForm::mnuFileExit, ""},
    {&MainForm::mnuReplace, "replacing a table entry"},
    {&MainForm::mnuEditCalculateTypes, "recalculating atom types"},
    {&MainForm::mnuUndo, ""},
    {&MainForm::mnuRedo, ""},
    // A value that is still being typed is stored when the view changes, as a step under its own name.
    {&MainForm::mnuViewMolecule, ""},
    {&MainForm::mnuViewShielding, ""},
    {&MainForm::mnuViewCoupling, ""},
    {&MainForm::mnuLines, ""},
    {&MainForm::mnuEnvelop, ""},
    {&MainForm::mnuLinesAndEnvelop, ""},
    {&MainForm::mnuSetupNMRParam, "setting up shielding and coupling"},
    {&MainForm::mnuSetupNMRSpect, "setting up the spectrum"},
    {&MainForm::mnuSetupReferenceShielding, "setting reference shieldings"},
    {&MainForm::mnuComputeNMR, "computing shieldings and couplings"},
    {&MainForm::mnuComputeSpectra, "computing the spectrum"},
    {&MainForm::mnuComputeAll, "computing both stages"},
    {&MainForm::mnuPaste, "pasting a molecule"},
    {&MainForm::mnuFileNewSmiles, "making a molecule from SMILES"},
    {&MainForm::mnuFileReport, ""},
    {&MainForm::mnuEditPublication, ""},
    {&MainForm::mnuPredict1H, "predicting the 1H spectrum"},
    {&MainForm::mnuPredict13C, "predicting the 13C spectrum"},
    {&MainForm::mnuPredict15N, "predicting the 15N spectrum"},
    {&MainForm::mnuPredict17O, "predicting the 17O spectrum"},
    {&MainForm::mnuPredict19F, "predicting the 19F spectrum"},
    {&MainForm::mnuPredict31P, "predicting the 31P spectrum"},
    {&MainForm::mnuComputeFit, "fitting to the measured spectrum"},
};

}  // namespace

Text StepNameOf(const MenuItem& Item) {
  for (const StepName& Row : StepNames) {
    if (&(Main.*Row.Item) == &Item) return Row.Name;
  }
  Text Name;
  for (const char Letter : Item.Caption) {
    if (Letter != '&' && Letter != '.') Name += Letter;
  }
  return Name;
}

}  // namespace zelvanor
