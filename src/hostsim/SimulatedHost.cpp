#include "hostsim/SimulatedHost.h"

#include <algorithm>

#include "basic/Numbers.h"

namespace zelvanor::hostsim {

namespace {

[[noreturn]] void Refuse(const Text& Asked) { throw Failure("Morvantis refuses " + Asked); }

bool IsRefused(const SimulatedHost& Host, const Text& Asked) {
  return std::any_of(Host.Refused.begin(), Host.Refused.end(),
                     [&](const Text& Beginning) { return Asked.starts_with(Beginning); });
}

// The first word and what stands behind the blank after it.
struct Order {
  Text Word;
  Text Rest;
};

Order SplitOrder(TextView Value) {
  const std::size_t Blank = std::min(Value.find(' '), Value.size());
  return {Text(Value.substr(0, Blank)), Text(Value.substr(std::min(Blank + 1, Value.size())))};
}

NamedSelection* FindSelection(SimulatedHost& Host, const Text& Name) {
  const auto Entry = std::find_if(Host.Named.begin(), Host.Named.end(),
                                  [&](const NamedSelection& Selection) { return Selection.Name == Name; });
  return Entry == Host.Named.end() ? nullptr : &*Entry;
}

// Selecting adds to what is selected.
void SelectName(SimulatedHost& Host, const Text& Name) {
  const NamedSelection* Selection = FindSelection(Host, Name);
  if (Selection == nullptr) throw Failure("Morvantis has no selection " + Name);
  for (const AtomRef& Atom : Selection->Atoms) {
    if (std::find(Host.Current.begin(), Host.Current.end(), Atom) == Host.Current.end()) Host.Current.push_back(Atom);
  }
}

void NameSelection(SimulatedHost& Host, const Text& Name) {
  if (NamedSelection* Former = FindSelection(Host, Name)) {
    Former->Atoms = Host.Current;
  } else {
    AddSelection(Host, Name, Host.Current);
  }
}

struct CommandRow {
  const char* Word;
  void (*Run)(SimulatedHost& Host, const Text& Rest);
};

constexpr CommandRow Commands[] = {
    {"query-response-has-tag", [](SimulatedHost& Host, const Text& Rest) { Host.AnswersHaveTag = Rest != "no"; }},
    {"molecular-mechanics-method", [](SimulatedHost& Host, const Text& Rest) { Host.Method = Rest; }},
    {"name-selection", NameSelection},
    {"menu-select-select-all", [](SimulatedHost& Host, const Text&) { Host.Current = AllAtoms(Host.System); }},
    {"menu-edit-copy",
     [](SimulatedHost& Host, const Text&) { Host.SetClipboard(CopyAtoms(Host.System, Host.Current)); }},
    {"select-none", [](SimulatedHost& Host, const Text&) { Host.Current.clear(); }},
    {"select-name", SelectName},
};

// The element of a list at a place that counts from 1.
template <class Element>
const Element& ElementAt(const std::vector<Element>& List, const Text& Place) {
  const Long Number = StrictLong(Place);
  if (Number < 1 || static_cast<std::size_t>(Number) > List.size()) throw Failure("Morvantis has no number " + Place);
  return List[static_cast<std::size_t>(Number) - 1];
}

Text SelectedAtom(const SimulatedHost& Host, const Text& Place) {
  const AtomRef& Atom = ElementAt(Host.Current, Place);
  return std::to_string(Atom.Atom) + ", " + std::to_string(Atom.Molecule);
}

Text AtomicNumber(const SimulatedHost& Host, const Text& Rest) {
  const Order Pair = SplitOrder(Rest);
  const HostSystem::AtomLine* Atom = FindAtom(Host.System, {StrictLong(Pair.Rest), StrictLong(Pair.Word)});
  if (Atom == nullptr) throw Failure("Morvantis has no atom " + Rest);
  return std::to_string(Atom->AtomicNumber);
}

struct ItemRow {
  const char* Word;
  Text (*Answer)(const SimulatedHost& Host, const Text& Rest);
};

constexpr ItemRow Items[] = {
    {"molecule-count", [](const SimulatedHost& Host, const Text&) { return std::to_string(Host.System.NumMolecules); }},
    {"molecular-mechanics-method", [](const SimulatedHost& Host, const Text&) { return Host.Method; }},
    {"selected-atom-count", [](const SimulatedHost& Host, const Text&) { return std::to_string(Host.Current.size()); }},
    {"named-selection-count", [](const SimulatedHost& Host, const Text&) { return std::to_string(Host.Named.size()); }},
    {"named-selection-name",
     [](const SimulatedHost& Host, const Text& Rest) { return ElementAt(Host.Named, Rest).Name; }},
    {"selected-atom", SelectedAtom},
    {"atomic-number", AtomicNumber},
};

template <class Row, std::size_t Count>
const Row& FindRow(const Row (&Rows)[Count], const Text& Word, const Text& Asked) {
  const auto* Entry = std::find_if(Rows, Rows + Count, [&](const Row& Candidate) { return Word == Candidate.Word; });
  if (Entry == Rows + Count) Refuse(Asked);
  return *Entry;
}

}  // namespace

void LoadSystem(SimulatedHost& Host, HostSystem System) {
  Host.System = std::move(System);
  Host.Method = Host.System.ForceField.empty() ? "amber" : Host.System.ForceField;
  Host.Named.clear();
  Host.Current.clear();
}

void BeginConversation(SimulatedHost& Host) { Host.AnswersHaveTag = true; }

void AddSelection(SimulatedHost& Host, const Text& Name, AtomList Atoms) {
  Host.Named.push_back({Name, std::move(Atoms)});
}

void ExecuteCommand(SimulatedHost& Host, const Text& Command) {
  Host.Log.push_back("execute " + Command);
  if (IsRefused(Host, Command) || !Command.starts_with('[') || !Command.ends_with(']')) Refuse(Command);
  const Order Given = SplitOrder(TextView(Command).substr(1, Command.size() - 2));
  FindRow(Commands, Given.Word, Command).Run(Host, Given.Rest);
}

Text AnswerItem(SimulatedHost& Host, const Text& Item) {
  Host.Log.push_back("request " + Item);
  if (IsRefused(Host, Item)) Refuse(Item);
  if (const auto Given = Host.Answers.find(Item); Given != Host.Answers.end()) return Given->second;
  const Order Asked = SplitOrder(Item);
  const Text Answer = FindRow(Items, Asked.Word, Item).Answer(Host, Asked.Rest);
  return Host.AnswersHaveTag ? Asked.Word + " = " + Answer : Answer;
}

}  // namespace zelvanor::hostsim
