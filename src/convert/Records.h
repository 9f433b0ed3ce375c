#pragma once

#include <cstdio>
#include <memory>

#include "basic/Types.h"

namespace zelvanor::convert {

// Molecule files as a row of records, read one after another: a file of any length takes the memory of one record.

enum class FileKind { Unknown, Mol, Smiles, Mol2, Pdb, Xyz, Cml, Cif };

// By the ending of the name, in any case of letters.
FileKind KindOfEnding(TextView Path);
// By its first lines; never Smiles, which any word could be.
FileKind KindOfContent(TextView Head);
// The ending that stands for the kind, without a dot; empty for Unknown.
const char* EndingOfKind(FileKind Kind);

// The largest record that is taken.
inline constexpr std::size_t LargestRecord = std::size_t{32} << 20;

struct Record {
  Long Number = 0;  // from 1; blank lines of a SMILES list do not count
  Text Title{};     // as the file gives it, without blanks at its ends and without control characters; empty for none
  Text Content{};
  Text Problem{};  // why it can't be taken; empty where it can
};

// Opened files close with their source. Child is the program that gives the content, 0 for none.
struct RecordSource {
  FileKind Kind = FileKind::Unknown;
  std::FILE* File = nullptr;
  int Child = 0;
  Long Given = 0;  // records so far
  Text Ahead;      // a line of the next record, which ended the one before
  bool HasAhead = false;
  bool AtEnd = false;

  RecordSource() = default;
  RecordSource(const RecordSource&) = delete;
  RecordSource& operator=(const RecordSource&) = delete;
  ~RecordSource();
};

// Opens a file, "-" being standard input with SMILES. Files of the kinds that obabel reads for us (Cml, Cif) become
// Mol. Throws a Failure that says why it can't be read; its number is UnknownKind where nobody knows the kind.
inline constexpr int UnknownKind = 3;
void OpenRecords(RecordSource& Source, const Text& Path);

// The next record; false behind the last.
bool NextRecord(RecordSource& Source, Record& Next);

// Without control characters and blanks at its ends, cut at 200 bytes: what may stand in a message or a comment line.
Text PlainTitle(TextView Value);

}  // namespace zelvanor::convert
