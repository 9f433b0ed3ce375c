#include "shell/HelpTopics.h"

#include <array>

#include "shell/Frame.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

constexpr std::array Topics = {
    HelpTopic{"frmValues", SpectralValuesHelp},
    HelpTopic{"frmGraph", 20},
    HelpTopic{"frmReplace", 21},
    HelpTopic{"frmRender", 22},
    HelpTopic{"frmPreference", 23},
    HelpTopic{"frmParamOptions", 24},
    HelpTopic{"frmSCf", 25},
    HelpTopic{"frmSpectOptions", 26},
    HelpTopic{"frmRefer", 27},
    HelpTopic{"frmSelect", 28},
    HelpTopic{"frmSelect2", 29},
    HelpTopic{"frmEquiv", 30},
    HelpTopic{"frmIntegrals", 31},
    HelpTopic{"frmProcess", 32},
    HelpTopic{"frmExport", 33},
    HelpTopic{"frmFit", 34},
    HelpTopic{"frmBackend", 40},
    HelpTopic{"frmRecords", 41},
    HelpTopic{"frmSmiles", 41},
    HelpTopic{"frmAbout", MainWindowHelp},
};

int ViewHelp() {
  // Before a document is there the view is the molecule's, but what helps is how to begin.
  switch (Workspace.ViewMode) {
    case ShieldingView:
      return ShieldingHelp;
    case CouplingView:
      return CouplingHelp;
    case SpectrumViewMode:
      return SpectrumHelp;
    default:
      return IsSet(Workspace.MoleculeLoaded) ? MoleculeHelp : MainWindowHelp;
  }
}

}  // namespace

std::span<const HelpTopic> HelpTopics() { return Topics; }

void GiveHelpContexts() {
  Main.frmNMR.HelpContext = MainWindowHelp;
  for (const HelpTopic& Row : Topics) {
    if (Form* Target = FindForm(Row.Form)) Target->HelpContext = Row.Context;
  }
}

int HelpContextOf(const Form& Target) { return &Target == &Main.frmNMR ? ViewHelp() : Target.HelpContext; }

void ShowContextHelp(const Form& Target) {
  Platform.ShowHelp(Main.HelpFile, HelpCommand::Context, HelpContextOf(Target));
}

}  // namespace zelvanor
