#include "platform/Paths.h"

#include "basic/TextTools.h"

namespace zelvanor {

std::size_t LastSeparator(TextView Path, std::size_t From) {
  const std::size_t Place = Path.find_last_of("/\\");
  return Place != TextView::npos && Place >= From ? Place : TextView::npos;
}

TextView FileTitleOf(TextView Path) {
  const std::size_t Place = LastSeparator(Path);
  return Place == TextView::npos ? Path : Path.substr(Place + 1);
}

Text EndingOf(TextView Path) {
  const std::size_t Dot = Path.rfind('.');
  return Dot == TextView::npos ? Text() : UpperCase(Path.substr(Dot));
}

}  // namespace zelvanor
