#pragma once

#include <map>

#include "predict/Task.h"

namespace zelvanor::predict {

// What earlier runs have finished in a folder, in one hidden file there: a line for each molecule with its key, a
// fingerprint of what it was made from, its numbers, its files with their hashes, and its JSON object. The last line of
// a key holds.
struct FinishedList {
  Text Folder;
  std::map<Text, long> Places;  // of the lines, by key
};

void ReadFinished(FinishedList& List, const Text& Folder);

// Of everything that a molecule's results depend on.
Text FingerprintOf(const Options& Given, const Molecule& One);

// Whether all results of the molecule are there, whole and made from the same; Made is then what they came to.
bool IsFinished(const FinishedList& List, const Options& Given, const Molecule& One, Result& Made);

// Puts a molecule behind the others. Throws a Failure.
void AddFinished(const FinishedList& List, const Options& Given, const Molecule& One, const Result& Made);

}  // namespace zelvanor::predict
