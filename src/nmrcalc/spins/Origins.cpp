#include "nmrcalc/spins/Origins.h"

#include <algorithm>
#include <cmath>

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

bool IsNearest(const std::vector<Line>& Lines, std::size_t Place, double Frequency) {
  if (Place >= Lines.size()) return false;
  const double Distance = std::fabs(Lines[Place].Frequency - Frequency);
  return (Place == 0 || Frequency - Lines[Place - 1].Frequency > Distance) &&
         (Place + 1 == Lines.size() || std::fabs(Lines[Place + 1].Frequency - Frequency) >= Distance);
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

void AddOriginsOf(LineOrigins& Target, const LineOrigins& Source) {
  const std::size_t Offset = Target.Shares.size();
  Target.Shares.insert(Target.Shares.end(), Source.Shares.begin(), Source.Shares.end());
  for (const LineOrigins::Item& Item : Source.Items) Target.Items.push_back({Item.Frequency, Item.End + Offset});
}

std::string FormatMap(const std::vector<Line>& Lines, const LineOrigins& Origins, double Reach,
                      const std::vector<std::vector<std::size_t>>& Members, const std::vector<int>& Degeneracies) {
  std::vector<std::vector<SiteShare>> Shares(Lines.size());
  std::size_t First = 0;
  std::size_t Place = 0;
  for (const LineOrigins::Item& Item : Origins.Items) {
    if (!IsNearest(Lines, Place, Item.Frequency)) ++Place;  // those of a cut site come one behind the other
    if (!IsNearest(Lines, Place, Item.Frequency)) Place = NearestLine(Lines, Item.Frequency);
    if (std::fabs(Lines[Place].Frequency - Item.Frequency) <= Reach) {
      Shares[Place].insert(Shares[Place].end(), Origins.Shares.begin() + static_cast<std::ptrdiff_t>(First),
                           Origins.Shares.begin() + static_cast<std::ptrdiff_t>(Item.End));
    }
    First = Item.End;
  }
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
