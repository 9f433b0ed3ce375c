#pragma once

#include <functional>
#include <map>
#include <vector>

#include "hostsim/HostSystem.h"

namespace zelvanor::hostsim {

// A stand-in for the host modelling program: it holds one system and carries out the commands and answers the items of
// the conversation. The same one serves scripts inside their process and programs over a bus.

struct NamedSelection {
  Text Name;
  AtomList Atoms;
};

struct SimulatedHost {
  HostSystem System;
  Text Method = "amber";              // force field
  std::vector<NamedSelection> Named;  // in the order of their naming; a name may stand twice, then the first one counts
  AtomList Current;                   // the selection, in the order of selecting
  bool AnswersHaveTag = true;         // the item's name in front of the answer; each conversation begins so

  std::vector<Text> Refused;     // commands and items that begin with one of these are refused
  std::map<Text, Text> Answers;  // items that are answered with a given text instead
  std::vector<Text> Log;         // what was asked: "execute COMMAND", "request ITEM"
  std::function<void(const Text& Value)> SetClipboard;
};

// Takes another system, with the force field of its text; the selections of the former one go.
void LoadSystem(SimulatedHost& Host, HostSystem System);
void BeginConversation(SimulatedHost& Host);

// Names a selection behind those that are there.
void AddSelection(SimulatedHost& Host, const Text& Name, AtomList Atoms);

// Each throws a Failure where the host refuses.
void ExecuteCommand(SimulatedHost& Host, const Text& Command);
Text AnswerItem(SimulatedHost& Host, const Text& Item);

}  // namespace zelvanor::hostsim
