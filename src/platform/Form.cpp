#include "platform/Form.h"

#include <algorithm>

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "platform/Services.h"

namespace zelvanor {

namespace {
std::vector<Form*>& Forms() {
  static std::vector<Form*> List;
  return List;
}

std::vector<Form*> OpenModals;

// A form's place on top of the open ones, for as long as it is shown.
struct ModalPlace {
  explicit ModalPlace(Form& Target) { OpenModals.push_back(&Target); }
  ~ModalPlace() { OpenModals.pop_back(); }
  ModalPlace(const ModalPlace&) = delete;
  ModalPlace& operator=(const ModalPlace&) = delete;
};
}  // namespace

Form::Form(Text Name) : Control(ControlKind::Form, nullptr, std::move(Name)) {
  Visible = False;
  Forms().push_back(this);
}

const std::vector<Form*>& AllForms() { return Forms(); }

void ShowModal(Form& Target) {
  if (!Target.Loaded) {
    Target.Loaded = true;
    Fire(Target.Load);
  }
  {
    const ModalPlace Place(Target);
    SetVisible(Target, True);
    Fire(Target.Open);
    Fire(Target.Activate);
    if (IsSet(Target.Visible)) Platform.RunModal(Target);
  }
  if (!OpenModals.empty() && IsSet(OpenModals.back()->Visible)) Fire(OpenModals.back()->Activate);
}

const std::vector<Form*>& ModalForms() { return OpenModals; }

void HideForm(Form& Target) { SetVisible(Target, False); }

void CancelForm(Form& Target) {
  for (Control* Item : Target.Controls) {
    if (Item->Kind == ControlKind::CommandButton && static_cast<CommandButton*>(Item)->IsCancel) {
      Fire(static_cast<CommandButton*>(Item)->Click);
      return;
    }
  }
  HideForm(Target);
}

bool UnloadForm(Form& Target) {
  Flag Cancel = False;
  if (Target.QueryUnload) Target.QueryUnload(Cancel);
  if (Cancel != 0) return false;
  Fire(Target.Unload);
  return true;
}

Form* FindForm(TextView Name) {
  const auto Place = std::find_if(Forms().begin(), Forms().end(), [&](const Form* Item) { return Item->Name == Name; });
  return Place == Forms().end() ? nullptr : *Place;
}

Control* FindControl(TextView Name) {
  if (Form* Whole = FindForm(Name)) return Whole;
  Form* Owner = FindForm(MainFormName);
  if (const std::size_t Dot = Name.find('.'); Dot != TextView::npos) {
    Owner = FindForm(Name.substr(0, Dot));
    Name.remove_prefix(Dot + 1);
  }
  if (Owner == nullptr) return nullptr;
  int Index = -1;
  if (const std::size_t Open = Name.find('('); Open != TextView::npos && Name.back() == ')') {
    Index = PrefixIndex(Name.substr(Open + 1));
    if (Index < 0) return nullptr;
    Name = Name.substr(0, Open);
  }
  for (Control* Item : Owner->Controls) {
    if (Item->Name == Name && Item->Index == Index) return Item;
  }
  return nullptr;
}

Text ControlName(const Control& Target) {
  Text Result = Target.Name;
  if (Target.Owner != nullptr && Target.Owner->Name != MainFormName) Result = Target.Owner->Name + "." + Result;
  if (Target.Index >= 0) Result += "(" + GeneralForm(Long{Target.Index}) + ")";
  return Result;
}

}  // namespace zelvanor
