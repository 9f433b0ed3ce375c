#include "files/ExtraSections.h"

namespace zelvanor {

namespace {
std::vector<ExtraSection>& Sections() {
  static std::vector<ExtraSection> All;
  return All;
}
}  // namespace

void AddExtraSection(const ExtraSection& Section) { Sections().push_back(Section); }
const std::vector<ExtraSection>& ExtraSections() { return Sections(); }

}  // namespace zelvanor
