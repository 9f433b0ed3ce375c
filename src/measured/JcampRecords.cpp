#include "measured/JcampRecords.h"

#include <algorithm>

#include "basic/TextTools.h"

namespace zelvanor {

namespace {

Text ComparedForm(TextView Label) {
  Text Form;
  for (const char C : Label) {
    if (C != ' ' && C != '-' && C != '/' && C != '_' && C != '\t') Form += UpperChar(C);
  }
  return Form;
}

TextView TakeLine(TextView& Rest) {
  const std::size_t End = Rest.find_first_of("\r\n");
  const TextView Line = Rest.substr(0, End);
  if (End == TextView::npos) {
    Rest = {};
  } else {
    const bool Pair = Rest[End] == '\r' && End + 1 < Rest.size() && Rest[End + 1] == '\n';
    Rest.remove_prefix(End + (Pair ? 2 : 1));
  }
  return Line;
}

// Some files end a block or a table without the "=" that every label has.
bool IsLabel(TextView Line) {
  return Line.starts_with("##") && (Line.find('=') != TextView::npos || Line.starts_with("##END"));
}

}  // namespace

std::vector<JcampBlock> SplitJcamp(TextView Content) {
  std::vector<JcampBlock> Blocks;
  std::vector<std::size_t> Open;  // the blocks that the present line stands in, the innermost last
  JcampRecord* Present = nullptr;
  int Number = 0;
  for (TextView Rest = Content; !Rest.empty();) {
    const char* const Start = Rest.data();
    const TextView Line = TakeLine(Rest);
    ++Number;
    if (!IsLabel(Line)) {
      // The value goes on: it reaches to the end of this line.
      if (Present != nullptr) {
        Present->Value =
            TextView(Present->Value.data(), static_cast<std::size_t>(Start + Line.size() - Present->Value.data()));
      }
      continue;
    }
    const std::size_t Equals = std::min(Line.find('='), Line.size());
    JcampRecord Record{ComparedForm(Line.substr(2, Equals - 2)), Line.substr(std::min(Equals + 1, Line.size())),
                       Number};
    Present = nullptr;
    if (Record.Label == "END") {
      if (!Open.empty()) Open.pop_back();
      continue;
    }
    if (Record.Label == "TITLE") {
      Open.push_back(Blocks.size());
      Blocks.emplace_back();
    }
    if (Open.empty()) continue;
    std::vector<JcampRecord>& Records = Blocks[Open.back()].Records;
    Records.push_back(std::move(Record));
    Present = &Records.back();
  }
  return Blocks;
}

TextView TakeJcampLine(TextView& Rest) {
  const TextView Line = TakeLine(Rest);
  return Line.substr(0, Line.find("$$"));
}

const JcampRecord* FindJcampRecord(const JcampBlock& Block, TextView Label) {
  const auto Found = std::find_if(Block.Records.begin(), Block.Records.end(),
                                  [&](const JcampRecord& Record) { return Record.Label == Label; });
  return Found == Block.Records.end() ? nullptr : &*Found;
}

TextView JcampValue(const JcampBlock& Block, TextView Label) {
  const JcampRecord* Record = FindJcampRecord(Block, Label);
  if (Record == nullptr) return {};
  TextView Rest = Record->Value;
  return TrimWhite(TakeJcampLine(Rest));
}

std::vector<TextView> JcampList(const JcampBlock& Block, TextView Label) {
  std::vector<TextView> Words;
  const JcampRecord* Record = FindJcampRecord(Block, Label);
  if (Record == nullptr) return Words;
  // Long lists run over several lines.
  for (TextView Rest = Record->Value; !Rest.empty();) {
    TextView Line = TrimWhite(TakeJcampLine(Rest));
    if (Line.empty()) continue;
    for (;;) {
      const std::size_t Comma = Line.find(',');
      const bool Last = Comma == TextView::npos;
      const TextView Word = TrimWhite(Line.substr(0, Comma));
      if (!Last || !Word.empty() || Rest.empty()) Words.push_back(Word);
      if (Last) break;
      Line.remove_prefix(Comma + 1);
    }
  }
  return Words;
}

}  // namespace zelvanor
