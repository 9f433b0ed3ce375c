#pragma once

#include <vector>

#include "basic/Types.h"
#include "platform/Services.h"

namespace zelvanor {

// zelvanor-convert, the program that turns molecule files into host text. It is started as a process of its own; while
// it works the window lives on.

// Whether files with the ending of this path are the converter's.
bool IsMoleculeFile(TextView Path);

// Beside this program, else beside the backend; empty where it is not installed.
Text FindConverter();

struct ConverterAnswer {
  int Status = 0;
  Text Message;  // what it said, without its name; one line
  bool Known() const { return Status != 3; }
};

// Runs it with these words, its output going to a file. Throws a Failure where it can't be started.
ConverterAnswer RunConverter(std::vector<Text> Words, const Text& Output);

// A record of a molecule file, or a molecule as SMILES where Smiles is not empty.
struct MoleculeOrigin {
  Text Path;
  Text Smiles;
  Long Record = 1;
  Text Source{};  // what the system names as its source; empty for the path
};

// Converts to this file. Reports its failures.
bool ConvertMolecule(const MoleculeOrigin& Origin, const Text& Output);
// Where converted systems are put for reading.
Text ConvertedPath();

// Reads a converted file into the Workspace, which is empty: host text, and from its comments the charge and the
// labelled isotopes. Title stands for the source in messages.
Flag ReadConverted(const Text& Path, const Text& Title);

// Starts the converter for the drawing of a SMILES, beside whatever else it does; the handle of the process. Throws a
// Failure. When it has ended its answer and its output can be had.
Long StartPreview(const Text& Smiles);
ConverterAnswer PreviewAnswer(const ProcessStatus& End);
Text PreviewPath();

struct RecordRow {
  Long Number = 0;
  Text Name;
  Text Formula;
};
// The records of a file; empty where that has failed, which has been reported. Known turns false for a file that is no
// molecule file at all, which has not.
std::vector<RecordRow> ListRecords(const Text& Path, bool& Known);

}  // namespace zelvanor
