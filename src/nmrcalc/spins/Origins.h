#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "nmrcalc/spins/Lines.h"

namespace nmrcalc {

// Which sites the lines of a spectrum come from.

struct SiteShare {
  std::uint32_t Site = 0;
  float Intensity = 0.0F;  // may be negative in strongly coupled systems
};

// Lines that come from one site alone, by rising frequency.
struct OwnLines {
  std::size_t Site = 0;
  double Scale = 1.0;  // of their intensities
  std::vector<Line> Lines{};
};

// What is merged into the lines of the result: transitions with the share of each site, and lines of single sites.
struct LineOrigins {
  struct Item {
    double Frequency = 0.0;  // Hz
    std::size_t End = 0;     // of its shares; they begin where those of the item before end
  };
  std::vector<Item> Items{};
  std::vector<SiteShare> Shares{};
  std::vector<OwnLines> Lists{};
};

inline void AddShare(LineOrigins& Target, std::size_t Site, double Intensity) {
  Target.Shares.push_back({static_cast<std::uint32_t>(Site), static_cast<float>(Intensity)});
}
inline void EndOrigin(LineOrigins& Target, double Frequency) {
  Target.Items.push_back({Frequency, Target.Shares.size()});
}

void ScaleOrigins(LineOrigins& Origins, double Scale);
void AddOriginsOf(LineOrigins& Target, LineOrigins Source);

// The text of nmrspect.map: "map 1 N", then for each of the N sorted lines its sites, counted from 1, with their shares
// in whole percent, the largest first. An origin belongs to the nearest line, when it lies within Reach of it. Members
// holds for each site of the origins the sites of the file that it stands for, and Degeneracies their spins.
std::string FormatMap(const std::vector<Line>& Lines, const LineOrigins& Origins, double Reach,
                      const std::vector<std::vector<std::size_t>>& Members, const std::vector<int>& Degeneracies);

}  // namespace nmrcalc
