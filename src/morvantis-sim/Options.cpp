#include "morvantis-sim/Options.h"

#include <algorithm>

#include "basic/TextTools.h"

namespace zelvanor::morvantis_sim {

const char* const Usage =
    R"(usage: morvantis-sim FILE.mvs [OPTION...]
Plays the host modelling program for Zelvanor: holds the system of FILE.mvs and answers over the session bus.

  --select NAME=M:A,...  a named selection: atom A of molecule M, both from 1; may stand more than once
  --current M:A,...      the current selection
  --method NAME          the force field; unless told, that of the file
  --start PROGRAM        starts a program as the host does, with the word MORVANTIS, and ends with it
  --log                  prints the conversation
for tests:
  --refuse TEXT          refuses every command or item that begins with TEXT
  --reply ITEM=TEXT      answers ITEM with TEXT
  --die TEXT             dies at the first command or item that begins with TEXT
  --hang TEXT            never answers the first command or item that begins with TEXT

A copied selection goes to the clipboard of the display. Where the environment variable ZELVANOR_CLIPBOARD names a file,
that file stands for the clipboard; the program that takes the selection has to be told the same. Without a display and
without the variable, both take a file in the user's runtime directory.
)";

namespace {

// NAME=VALUE, cut at the first "=".
std::pair<Text, Text> SplitPair(const Text& Value) {
  const std::size_t Equals = Value.find('=');
  if (Equals == Text::npos) throw Failure("no \"=\" in " + Value);
  return {Value.substr(0, Equals), Value.substr(Equals + 1)};
}

void AddSelection(Options& All, const Text& Value) {
  const auto [Name, Atoms] = SplitPair(Value);
  All.Selections.push_back({Name, hostsim::ReadAtomList(Atoms)});
}

struct OptionRow {
  const char* Name;
  void (*Take)(Options& All, const Text& Value);
};

constexpr OptionRow Rows[] = {
    {"--select", AddSelection},
    {"--current", [](Options& All, const Text& Value) { All.Current = hostsim::ReadAtomList(Value); }},
    {"--method", [](Options& All, const Text& Value) { All.Method = Value; }},
    {"--start", [](Options& All, const Text& Value) { All.Start = SplitAtBlanks(Value); }},
    {"--refuse", [](Options& All, const Text& Value) { All.Refused.push_back(Value); }},
    {"--reply", [](Options& All, const Text& Value) { All.Answers.push_back(SplitPair(Value)); }},
    {"--die", [](Options& All, const Text& Value) { All.DieAt = Value; }},
    {"--hang", [](Options& All, const Text& Value) { All.HangAt = Value; }},
};

}  // namespace

Options ReadOptions(const std::vector<Text>& Words) {
  Options All;
  for (std::size_t Place = 0; Place < Words.size(); ++Place) {
    const Text& Word = Words[Place];
    const auto* Row =
        std::find_if(std::begin(Rows), std::end(Rows), [&](const OptionRow& R) { return Word == R.Name; });
    if (Row != std::end(Rows)) {
      if (Place + 1 == Words.size()) throw Failure("nothing behind " + Word);
      Row->Take(All, Words[++Place]);
    } else if (Word == "--log") {
      All.Log = true;
    } else if (Word == "--help") {
      All.Help = true;
    } else if (Word.starts_with("--")) {
      throw Failure("unknown option " + Word);
    } else if (!All.File.empty()) {
      throw Failure("more than one file: " + Word);
    } else {
      All.File = Word;
    }
  }
  if (All.File.empty() && !All.Help) throw Failure("no file is named");
  return All;
}

}  // namespace zelvanor::morvantis_sim
