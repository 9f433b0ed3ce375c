#include "shell/frmAbout.h"

#include "platform/Form.h"
#include "shell/Frame.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct AboutForm {
  Form frmAbout{"frmAbout"};
  Label Label1{&frmAbout, "Label1"};
  Label Label2{&frmAbout, "Label2"};
  CommandButton Command1{&frmAbout, "Command1"};
};

AboutForm About;

void Command1_Click() { HideForm(About.frmAbout); }

}  // namespace

void BuildAboutForm() {
  About.frmAbout.Caption = "About Zelvanor";
  About.Label1.Caption = ProgramTitle;
  About.Label2.Caption = Join("Version ", ProgramVersion);
  About.Command1.Caption = "OK";
  About.Command1.IsDefault = true;
  About.Command1.IsCancel = true;
  About.Command1.Click = Command1_Click;
  About.frmAbout.Layout =
      ColumnOf({ItemOf(About.Label1), ItemOf(About.Label2), RowOf({StretchOf(), ItemOf(About.Command1), StretchOf()})});
}

void mnuAbout_Click() {
  ShowStatus("See version imformation.");
  ShowModal(About.frmAbout);
}

}  // namespace zelvanor
