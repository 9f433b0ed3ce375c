#include "predict/Bar.h"

#include <cmath>
#include <cstdio>

namespace zelvanor::predict {

void ShowBar(const Bar& This, Long Done, const Text& Name) {
  if (!This.Shown) return;
  constexpr int Width = 30;
  const double Used = std::chrono::duration<double>(std::chrono::steady_clock::now() - This.Start).count();
  Text Line = "\r\033[K";
  if (This.Total > 0) {
    const auto Filled = static_cast<std::size_t>(Width * Done / This.Total);
    Line += "[" + Text(Filled, '#') + Text(Width - Filled, ' ') + "] " + std::to_string(Done) + "/" +
            std::to_string(This.Total);
  } else {
    Line += std::to_string(Done);
  }
  Line += "  " + Name.substr(0, 24);
  if (This.Total > 0 && Done > 0) {
    const auto Left = std::lround(Used / Done * (This.Total - Done));
    char Time[32];
    std::snprintf(Time, sizeof Time, "  %ld:%02ld left", Left / 60, Left % 60);
    Line += Time;
  }
  std::fputs(Line.c_str(), stderr);
}

void ClearBar(const Bar& This) {
  if (This.Shown) std::fputs("\r\033[K", stderr);
}

}  // namespace zelvanor::predict
