#include "workspace/References.h"

#include "basic/NumberText.h"
#include "basic/Numbers.h"
#include "basic/TextTools.h"
#include "workspace/ElementData.h"
#include "workspace/Helpers.h"
#include "workspace/Workspace.h"

namespace zelvanor {

namespace {

WorkspaceState& W = Workspace;

// Entry 0 to the last but one; the last serves every other element and stays 0.
Array<Single>& OwnValues() {
  static Array<Single> Values;
  return Values;
}

bool HasOwn(int Entry) { return static_cast<std::size_t>(Entry) < OwnValues().Span().size(); }

}  // namespace

void KeepReferencesAsOwn() {
  if (W.ReferenceLevel.empty()) OwnValues() = W.ReferenceShielding;
}

Single OwnReference(int Entry) {
  return W.ReferenceLevel.empty() || !HasOwn(Entry) ? W.ReferenceShielding[Entry] : OwnValues()[Entry];
}

void UseOwnReferences() {
  if (W.ReferenceLevel.empty()) return;
  for (int Entry = 0; Entry < W.NumReferenceElements && HasOwn(Entry); ++Entry) {
    W.ReferenceShielding[Entry] = OwnValues()[Entry];
  }
  W.ReferenceLevel.clear();
}

void UseLevelReferences(const Text& Level, const std::vector<ReferenceValue>& Values) {
  UseOwnReferences();
  for (const ReferenceValue& Item : Values) {
    for (int Entry = 0; Entry < W.NumReferenceElements; ++Entry) {
      if (W.ReferenceElement[Entry] == Item.Element) W.ReferenceShielding[Entry] = Item.Value;
    }
  }
  W.ReferenceLevel = Level;
}

bool ReadReferenceLines(const std::vector<Text>& Lines) {
  if (Lines.empty() || TrimBlanks(Lines[0]).empty()) return false;
  std::vector<ReferenceValue> Values;
  for (std::size_t Line = 1; Line < Lines.size(); ++Line) {
    const std::vector<Text> Words = SplitAtBlanks(Lines[Line]);
    if (Words.size() != 2) return false;
    try {
      Values.push_back({ElementNumber(Words[0]), StrictSingle(Words[1])});
    } catch (const Failure&) {
      return false;
    }
  }
  UseLevelReferences(Text(TrimBlanks(Lines[0])), Values);
  return true;
}

std::vector<Text> ReferenceLines() {
  if (W.ReferenceLevel.empty()) return {};
  std::vector<Text> Lines{W.ReferenceLevel};
  for (int Entry = 0; Entry < W.NumReferenceElements; ++Entry) {
    Lines.push_back(Join(ElementSymbol(W.ReferenceElement[Entry]), " ", GeneralForm(W.ReferenceShielding[Entry])));
  }
  return Lines;
}

}  // namespace zelvanor
