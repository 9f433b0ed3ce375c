#include "files/frmRecords.h"

#include "basic/TextTools.h"
#include "platform/Form.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

struct RecordForm {
  Form frmRecords{"frmRecords"};
  Label Label1{&frmRecords, "Label1"};
  TextField Text1{&frmRecords, "Text1"};  // what names and formulas are searched for
  ListBox List1{&frmRecords, "List1"};
  Label Label2{&frmRecords, "Label2"};
  CommandButton Command1{&frmRecords, "Command1"};
  CommandButton Command2{&frmRecords, "Command2"};

  std::vector<RecordRow> Rows;
  std::vector<Long> Shown;  // record numbers beside the list's items
  Long Chosen = 0;
};

RecordForm Dialog;

void ShowMatches() {
  const Text Wanted = UpperCase(Dialog.Text1.Value);
  std::vector<Text> Items;
  Dialog.Shown.clear();
  for (const RecordRow& Row : Dialog.Rows) {
    Text Line = Join(Row.Number, "  ", Row.Name, Row.Name.empty() ? "" : "  ", Row.Formula);
    if (UpperCase(Line).find(Wanted) == Text::npos) continue;
    Items.push_back(std::move(Line));
    Dialog.Shown.push_back(Row.Number);
  }
  SetCaption(Dialog.Label2, Join(static_cast<Long>(Items.size()), " of ", static_cast<Long>(Dialog.Rows.size())));
  SetEnabled(Dialog.Command1, ToFlag(!Items.empty()));
  SetItems(Dialog.List1, std::move(Items));
  if (!Dialog.Shown.empty()) SetListIndex(Dialog.List1, 0);
}

void Command1_Click() {
  const int Place = Dialog.List1.ListIndex;
  if (Place < 0 || static_cast<std::size_t>(Place) >= Dialog.Shown.size()) return;
  Dialog.Chosen = Dialog.Shown[static_cast<std::size_t>(Place)];
  HideForm(Dialog.frmRecords);
}

}  // namespace

Long ChooseRecord(const std::vector<RecordRow>& Rows) {
  Dialog.Rows = Rows;
  Dialog.Chosen = 0;
  ShowStatus("The file has several records: choose one.");
  SetText(Dialog.Text1, "");
  ShowMatches();
  ShowModal(Dialog.frmRecords);
  Dialog.Rows.clear();
  return Dialog.Chosen;
}

void BuildRecordForm() {
  RecordForm& D = Dialog;
  D.frmRecords.Caption = "Choose Record";
  D.Label1.Caption = "&Search:";
  D.Label2.AccessibleName = "Records that match";
  D.Text1.Change = ShowMatches;
  D.List1.AccessibleName = "Records of the file";
  D.List1.EmptyHint = "No record has this in its number, name or formula.";
  D.List1.DoubleClick = Command1_Click;
  SetUpOkAndCancel(D.Command1, "&Open", Command1_Click, D.Command2, [] { HideForm(Dialog.frmRecords); });
  D.frmRecords.Layout = ColumnOf({RowOf({ItemOf(D.Label1), ItemOf(D.Text1)}), ItemOf(D.List1),
                                  RowOf({ItemOf(D.Label2), StretchOf(), ItemOf(D.Command1), ItemOf(D.Command2)})});
}

}  // namespace zelvanor
