#pragma once

#include <vector>

#include "predict/Molecules.h"

namespace zelvanor::predict {

// What a molecule came to. Texts are as they go into the summary and the JSON object.
struct Result {
  bool Failed = false;
  Text Message{};
  Text Numbers{};  // "ATOMS,NUCLEI,LINES,SECONDS"
  Text Json{};     // the whole object, one line
};

// Starts the program once, without a window: settings, tables, services. Throws a Failure that says what is missing.
void StartProgram();

// The names of all files that a molecule gets.
std::vector<Text> FilesOf(const Options& Given, const Text& Name);

// Computes a molecule in the program as it was started, in a folder of its own. Its files are there when it is done,
// under the names that they are to have.
Result ComputeMolecule(const Options& Given, const Molecule& One, const Text& Folder);

// The object of a molecule that has failed.
Text FailedJson(const Options& Given, const Text& Name, const Text& Message, Double Seconds);

}  // namespace zelvanor::predict
