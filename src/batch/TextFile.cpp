#include "batch/TextFile.h"

#include <fstream>

#include "basic/TextTools.h"
#include "batch/Batch.h"

namespace zelvanor::batch {

Text EndingOf(const Text& Path) {
  const std::size_t Dot = Path.rfind('.');
  return Dot == Text::npos ? Text() : UpperCase(Path.substr(Dot));
}

void WriteText(const Text& Path, const Text& Content) {
  std::ofstream Stream(Path, std::ios::binary | std::ios::trunc);
  Stream << Content;
  Stream.flush();
  if (!Stream) throw ScriptStop{CannotCarryOut, "can't write " + Path};
}

}  // namespace zelvanor::batch
