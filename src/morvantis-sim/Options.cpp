#include "morvantis-sim/Options.h"

#include "basic/OptionRows.h"
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

constexpr OptionRow<Options> Rows[] = {
    {"", "--select", true, AddSelection},
    {"", "--current", true, [](Options& All, const Text& Value) { All.Current = hostsim::ReadAtomList(Value); }},
    {"", "--method", true, [](Options& All, const Text& Value) { All.Method = Value; }},
    {"", "--start", true, [](Options& All, const Text& Value) { All.Start = SplitAtBlanks(Value); }},
    {"", "--refuse", true, [](Options& All, const Text& Value) { All.Refused.push_back(Value); }},
    {"", "--reply", true, [](Options& All, const Text& Value) { All.Answers.push_back(SplitPair(Value)); }},
    {"", "--die", true, [](Options& All, const Text& Value) { All.DieAt = Value; }},
    {"", "--hang", true, [](Options& All, const Text& Value) { All.HangAt = Value; }},
    {"", "--log", false, [](Options& All, const Text&) { All.Log = true; }},
    {"", "--help", false, [](Options& All, const Text&) { All.Help = true; }},
};

}  // namespace

Options ReadOptions(const std::vector<Text>& Words) {
  Options All;
  TakeOptionWords(Words, Rows, All, [&All](const Text& Word) {
    if (!All.File.empty()) throw Failure("more than one file: " + Word);
    All.File = Word;
  });
  if (All.File.empty() && !All.Help) throw Failure("no file is named");
  return All;
}

}  // namespace zelvanor::morvantis_sim
