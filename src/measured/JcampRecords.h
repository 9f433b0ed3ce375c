#pragma once

#include <vector>

#include "basic/Types.h"

namespace zelvanor {

// A labelled data record of a JCAMP-DX file: "##LABEL= value" up to the next label.
struct JcampRecord {
  Text Label;      // upper case without blanks, "-", "/" and "_", as labels are compared
  TextView Value;  // from behind "=", comments and line ends included
  int Line = 0;    // of the label, from 1
};

// The records between a TITLE and its END, those of blocks inside it left out.
struct JcampBlock {
  std::vector<JcampRecord> Records;
};

// All blocks of a file in the order of their titles. A file that breaks off ends all its blocks.
std::vector<JcampBlock> SplitJcamp(TextView Content);

// The first line of a record's value without comment and blanks; empty for a label that is not there.
TextView JcampValue(const JcampBlock& Block, TextView Label);
const JcampRecord* FindJcampRecord(const JcampBlock& Block, TextView Label);
// The words of a list, separated by commas.
std::vector<TextView> JcampList(const JcampBlock& Block, TextView Label);

// A line of a value, without its "$$" comment; Rest goes on behind it.
TextView TakeJcampLine(TextView& Rest);

}  // namespace zelvanor
