#include "nmrcalc/spins/Origins.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace nmrcalc {

namespace {

std::size_t NearestLine(const std::vector<Line>& Lines, double Frequency) {
  const auto Above = std::lower_bound(Lines.begin(), Lines.end(), Frequency,
                                      [](const Line& Item, double Value) { return Item.Frequency < Value; });
  if (Above == Lines.begin()) return 0;
  const auto Index = static_cast<std::size_t>(Above - Lines.begin());
  if (Above == Lines.end()) return Index - 1;
  return Above->Frequency - Frequency < Frequency - Lines[Index - 1].Frequency ? Index : Index - 1;
}

// The same from the line that was nearest before, for frequencies that rise for the most part.
std::size_t MoveToNearest(const std::vector<Line>& Lines, std::size_t Place, double Frequency) {
  const double Distance = Lines[Place].Frequency - Frequency;
  if (Place > 0 && Frequency - Lines[Place - 1].Frequency <= Distance) return NearestLine(Lines, Frequency);
  while (Place + 1 < Lines.size() && Lines[Place + 1].Frequency - Frequency < Frequency - Lines[Place].Frequency) {
    ++Place;
  }
  return Place;
}

// Adds what comes from one site to the shares of the lines.
void AddOwnLines(const std::vector<Line>& Lines, const OwnLines& Own, double Reach,
                 std::vector<std::vector<SiteShare>>& Shares) {
  const auto Site = static_cast<std::uint32_t>(Own.Site);
  std::size_t Place = 0;
  for (const Line& Item : Own.Lines) {
    Place = MoveToNearest(Lines, Place, Item.Frequency);
    if (std::fabs(Lines[Place].Frequency - Item.Frequency) > Reach) continue;
    std::vector<SiteShare>& Target = Shares[Place];
    if (Target.empty() || Target.back().Site != Site) Target.push_back({Site, 0.0F});
    Target.back().Intensity += static_cast<float>(Item.Intensity * Own.Scale);
  }
}

// The sum of the shares of each site, by falling share; sites whose shares add up to nothing are left out.
std::vector<SiteShare> SumShares(std::vector<SiteShare> Shares) {
  std::sort(Shares.begin(), Shares.end(), [](const SiteShare& A, const SiteShare& B) { return A.Site < B.Site; });
  std::vector<SiteShare> Sums;
  for (const SiteShare& Share : Shares) {
    if (Sums.empty() || Sums.back().Site != Share.Site) Sums.push_back({Share.Site, 0.0F});
    Sums.back().Intensity += Share.Intensity;
  }
  std::erase_if(Sums, [](const SiteShare& Share) { return !(Share.Intensity > 0.0F); });
  return Sums;
}

// One line of the text; false when no site has half a percent.
bool AppendShares(std::string& Text, const std::vector<SiteShare>& Groups,
                  const std::vector<std::vector<std::size_t>>& Members, const std::vector<int>& Degeneracies) {
  double Whole = 0.0;
  std::vector<SiteShare> Sites;
  for (const SiteShare& Group : Groups) {
    Whole += Group.Intensity;
    int NumSpins = 0;
    for (const std::size_t Site : Members[Group.Site]) NumSpins += Degeneracies[Site];
    for (const std::size_t Site : Members[Group.Site]) {
      Sites.push_back({static_cast<std::uint32_t>(Site),
                       Group.Intensity * static_cast<float>(Degeneracies[Site]) / static_cast<float>(NumSpins)});
    }
  }
  std::stable_sort(Sites.begin(), Sites.end(),
                   [](const SiteShare& A, const SiteShare& B) { return A.Intensity > B.Intensity; });
  bool Any = false;
  for (const SiteShare& Site : Sites) {
    const auto Percent = std::lround(100.0 * Site.Intensity / Whole);
    if (Percent < 1) break;
    Text += (Any ? " " : "") + std::to_string(Site.Site + 1) + ":" + std::to_string(Percent);
    Any = true;
  }
  return Any;
}

}  // namespace

void ScaleOrigins(LineOrigins& Origins, double Scale) {
  for (SiteShare& Share : Origins.Shares) Share.Intensity *= static_cast<float>(Scale);
  for (OwnLines& Own : Origins.Lists) Own.Scale *= Scale;
}

void AddOriginsOf(LineOrigins& Target, LineOrigins Source) {
  const std::size_t Offset = Target.Shares.size();
  Target.Shares.insert(Target.Shares.end(), Source.Shares.begin(), Source.Shares.end());
  Target.Items.reserve(Target.Items.size() + Source.Items.size());
  for (const LineOrigins::Item& Item : Source.Items) Target.Items.push_back({Item.Frequency, Item.End + Offset});
  std::move(Source.Lists.begin(), Source.Lists.end(), std::back_inserter(Target.Lists));
}

std::string FormatMap(const std::vector<Line>& Lines, const LineOrigins& Origins, double Reach,
                      const std::vector<std::vector<std::size_t>>& Members, const std::vector<int>& Degeneracies) {
  std::vector<std::vector<SiteShare>> Shares(Lines.size());
  std::size_t First = 0;
  for (const LineOrigins::Item& Item : Origins.Items) {
    const std::size_t Place = NearestLine(Lines, Item.Frequency);
    if (std::fabs(Lines[Place].Frequency - Item.Frequency) <= Reach) {
      Shares[Place].insert(Shares[Place].end(), Origins.Shares.begin() + static_cast<std::ptrdiff_t>(First),
                           Origins.Shares.begin() + static_cast<std::ptrdiff_t>(Item.End));
    }
    First = Item.End;
  }
  for (const OwnLines& Own : Origins.Lists) AddOwnLines(Lines, Own, Reach, Shares);
  std::string Text = "map 1 " + std::to_string(Lines.size()) + "\n";
  std::string
      Last;  // a line of which nothing is known is one among many faint ones: it has the shares of its neighbour
  for (std::size_t K = 0; K < Lines.size(); ++K) {
    std::string Own;
    if (AppendShares(Own, SumShares(std::move(Shares[K])), Members, Degeneracies)) Last = std::move(Own);
    Text += Last + "\n";
  }
  return Text;
}

}  // namespace nmrcalc
