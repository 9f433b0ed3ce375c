#pragma once

#include <memory>
#include <set>

#include "convert/Records.h"
#include "predict/Options.h"

namespace zelvanor::predict {

// A molecule of the run.
struct Molecule {
  Long Place = 0;  // in the run, from 1
  Text Input;      // as it was given
  Text Path;       // of the whole file where it is a document or host text, which are not split
  convert::FileKind Kind = convert::FileKind::Unknown;
  convert::Record Record;
  Text Name;  // of the results, without nucleus and ending
};

// Names with every character but ASCII letters, digits, "-", "_" and "." replaced by "_", at most 80 long, and never
// one that was given before.
struct Names {
  std::set<Text> Given;
};
Text GiveName(Names& All, const Text& Wanted);

// The molecules of all inputs in their order, one at a time.
struct Walk {
  const Options& Given;
  std::size_t Next = 0;  // input
  std::unique_ptr<convert::RecordSource> Source{};
  Text Path{};
  Molecule Ahead{};  // read, but not given yet
  bool HasAhead = false;
  bool Several = false;  // the file has more than one record
  Long Count = 0;
  Names Used{};
  bool AnyMissing = false;
};

// False behind the last. Inputs that can't be read are told on standard error.
bool NextMolecule(Walk& All, Molecule& Next);

// Whether any input can be read at all.
bool AnyReadable(const Options& Given);

}  // namespace zelvanor::predict
