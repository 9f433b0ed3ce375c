#pragma once

#include <algorithm>
#include <vector>

#include "basic/Failure.h"
#include "basic/Types.h"

namespace zelvanor {

// An option of a program's command line. Short is empty where there is the long name alone; Take gets an empty text
// when the option has no value.
template <class Options>
struct OptionRow {
  const char* Short;
  const char* Name;
  bool TakesValue;
  void (*Take)(Options& All, const Text& Value);
};

// Takes the words of a command line by the rows: --name VALUE, --name=VALUE or -n VALUE. TakeWord(Word) gets those that
// are no option: "-", words without a dash in front, and all behind "--". Throws a Failure for an option of no row and
// for one whose value is missing.
template <class Options, class Rows, class Visit>
void TakeOptionWords(const std::vector<Text>& Words, const Rows& All, Options& Into, const Visit& TakeWord) {
  bool Ended = false;
  for (std::size_t Place = 0; Place < Words.size(); ++Place) {
    Text Word = Words[Place];
    const std::size_t Equals = !Ended && Word.starts_with("--") ? Word.find('=') : Text::npos;
    const bool Attached = Equals != Text::npos;
    if (Attached) Word.resize(Equals);
    const auto* Row = std::find_if(std::begin(All), std::end(All), [&](const OptionRow<Options>& R) {
      return Word == R.Name || (*R.Short != 0 && Word == R.Short);
    });
    if (Ended || Word == "-" || !Word.starts_with("-")) {
      TakeWord(Words[Place]);
    } else if (Word == "--" && !Attached) {
      Ended = true;
    } else if (Row == std::end(All) || (!Row->TakesValue && Attached)) {
      throw Failure("unknown option " + Words[Place]);
    } else if (Row->TakesValue && !Attached && Place + 1 == Words.size()) {
      throw Failure("nothing behind " + Word);
    } else if (!Row->TakesValue) {
      Row->Take(Into, {});
    } else {
      Row->Take(Into, Attached ? Words[Place].substr(Equals + 1) : Words[++Place]);
    }
  }
}

}  // namespace zelvanor
