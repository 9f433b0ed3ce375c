#include "settings/ColorSets.h"

#include <algorithm>

#include "basic/Numbers.h"
#include "settings/ProfileAccess.h"
#include "workspace/Helpers.h"

namespace zelvanor {

namespace {

SettingsState& S = Settings;

struct SetRow {
  const char* Name;
  const char* Title;
};

constexpr std::array<SetRow, NumSets> ColorSets = {{
    {"MorvantisColors", "Morvantis colors"},
    {"CustomColors1", "Custom set 1"},
    {"CustomColors2", "Custom set 2"},
}};

constexpr std::array<SetRow, NumSets> RadiusSets = {{
    {"BallsSticksRadii", "Balls and sticks"},
    {"CPKRadii", "CPK Spheres"},
    {"CustomRadii", "Custom"},
}};

using Names = std::array<Text, NumSets>;

void InitSets(const std::array<SetRow, NumSets>& Rows, Integer& Count, Integer& Current, Names& SetNames,
              Names& SetTitles) {
  if (Count == NumSets) ShowError("ReInit");
  Count = NumSets;
  Current = -1;
  for (std::size_t Index = 0; Index < Rows.size(); ++Index) {
    SetNames[Index] = Rows[Index].Name;
    SetTitles[Index] = Rows[Index].Title;
  }
}

Integer FindSet(const Names& SetNames, TextView Name) {
  for (std::size_t Index = 0; Index < SetNames.size(); ++Index) {
    if (EqualsIgnoringCase(SetNames[Index], Name)) return {static_cast<int>(Index)};
  }
  return -1;
}

int ValidIndex(int Index) { return Index < 0 || Index >= NumSets ? 0 : Index; }

const Text& NameOf(const Names& SetNames, int Index) {
  if (Index < 0 || Index >= NumSets) throw Failure(failures::Subscript);
  return SetNames[static_cast<std::size_t>(Index)];
}

// The part of Rest before the mark, as a number; Rest goes on behind the mark.
Integer TakeComponent(TextView& Rest, char Mark) {
  const std::size_t Place = Rest.find(Mark);
  if (Place == TextView::npos) throw Failure(failures::TypeMismatch);
  const Integer Value = StrictInteger(TrimBlanks(Rest.substr(0, Place)));
  Rest.remove_prefix(Place + 1);
  return Value;
}

// One colour of a section; none after the boxes that say why.
std::optional<Colour> ReadColorEntry(const Text& Section, const Text& Key, const Text& Default) {
  const std::optional<Colour> Value = ColorFromText(ReadIniText(Section, Key, Default));
  if (!Value) ShowError(Join("Error reading ColorSet entry for ", Quoted(Key), " in section [", Section, "]"));
  return Value;
}

void ReadColorSet(const Text& Section) {
  constexpr const char* DefaultKey = "Default";
  constexpr const char* DefaultColor = "RGB(128,128,128)";
  if (!ReadColorEntry(Section, DefaultKey, DefaultColor)) return;
  const Text Default = ReadIniText(Section, DefaultKey, DefaultColor);
  for (int Element = 0; Element < NumElementEntries; ++Element) {
    const std::optional<Colour> Value = ReadColorEntry(Section, ElementSymbol(Element), Default);
    if (!Value) return;
    S.AtomColors[static_cast<std::size_t>(Element)] = *Value;
  }
}

void ReadRadiusSet(const Text& Section) {
  const Text Default = ReadIniText(Section, "Default", "0.3");
  for (int Element = 0; Element < NumElementEntries; ++Element) {
    const Text Symbol = ElementSymbol(Element);
    const std::optional<Double> Value = ValidateNumberText(ReadIniText(Section, Symbol, Default), HighEndIncluded, 0,
                                                           1000, Join("radius for ", Symbol, " from ini file"), True);
    if (Value) S.AtomRadii[static_cast<std::size_t>(Element)] = static_cast<Single>(*Value);
  }
}

}  // namespace

void InitColorSets() { InitSets(ColorSets, S.NumColorSets, S.CurrentColorSet, S.ColorSetName, S.ColorSetTitle); }
void InitRadiusSets() { InitSets(RadiusSets, S.NumRadiusSets, S.CurrentRadiusSet, S.RadiusSetName, S.RadiusSetTitle); }

Integer FindColorSet(TextView Name) { return FindSet(S.ColorSetName, Name); }
Integer FindRadiusSet(TextView Name) { return FindSet(S.RadiusSetName, Name); }

void SelectColorSet(int Index) {
  S.CurrentColorSet = ValidIndex(Index);
  S.AtomColors.fill(FallbackAtomColor);
  ReadColorSet(GetColorSetName(S.CurrentColorSet));
}

void SelectRadiusSet(int Index) {
  S.CurrentRadiusSet = ValidIndex(Index);
  S.AtomRadii.fill(FallbackRadius);
  ReadRadiusSet(GetRadiusSetName(S.CurrentRadiusSet));
}

Text GetColorSetName(int Index) { return NameOf(S.ColorSetName, Index); }
Text GetRadiusSetName(int Index) { return NameOf(S.RadiusSetName, Index); }

std::optional<Colour> ReadColour(TextView Value) {
  try {
    TextView Rest = Value;
    if (const std::size_t Open = Rest.find('('); Open != TextView::npos) Rest.remove_prefix(Open + 1);
    const Integer Red = TakeComponent(Rest, ',');
    const Integer Green = TakeComponent(Rest, ',');
    const Integer Blue = TakeComponent(Rest, ')');
    return ToLong(int(Red) + 256.0 * int(Green) + 65536.0 * int(Blue));
  } catch (const Failure&) {
    return {};
  }
}

std::optional<Colour> ColorFromText(TextView Value) {
  const std::optional<Colour> Read = ReadColour(Value);
  if (!Read) ShowError(Join("Bad color specification: ", Quoted(Value)));
  return Read;
}

Text TextFromColor(Colour Value) {
  const auto Component = [Value](int Shift) { return Long{(Value >> Shift) & 255}; };
  return Join("RGB(", Component(0), ",", Component(8), ",", Component(16), ")");
}

}  // namespace zelvanor
