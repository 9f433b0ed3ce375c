#include "hostbus/ClipboardFile.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace zelvanor::hostbus {

Text ClipboardFilePath() {
  const char* Path = std::getenv("ZELVANOR_CLIPBOARD");
  return Path == nullptr ? Text() : Text(Path);
}

Text ReadClipboardFile() {
  std::ifstream Stream(ClipboardFilePath(), std::ios::binary);
  return {std::istreambuf_iterator<char>(Stream), std::istreambuf_iterator<char>()};
}

void WriteClipboardFile(const Text& Value) {
  std::ofstream Stream(ClipboardFilePath(), std::ios::binary | std::ios::trunc);
  Stream << Value << std::flush;
  if (!Stream) throw Failure("Can't write the clipboard file " + ClipboardFilePath());
}

}  // namespace zelvanor::hostbus
