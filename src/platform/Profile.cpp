#include "platform/Profile.h"

#include <filesystem>
#include <map>
#include <optional>

#include "basic/TextTools.h"
#include "platform/EndSignals.h"
#include "platform/Services.h"
#include "platform/TextFiles.h"

namespace zelvanor {

namespace {

namespace fs = std::filesystem;

// One file as lines up to their line feeds, so that each keeps its own end. New lines take Return behind them: a
// carriage return where the file's first line has one.
struct ProfileLines {
  std::vector<Text> Lines;
  Text Return;
};

// A file that is not there has no lines; one that can't be read is a Failure.
ProfileLines ReadLines(const Text& File) {
  ProfileLines Result;
  std::error_code Problem;
  if (!fs::exists(File, Problem)) return Result;
  const Text Content = ReadWholeFile(File);
  for (std::size_t Place = 0; Place < Content.size();) {
    const std::size_t End = std::min(Content.find('\n', Place), Content.size());
    Result.Lines.push_back(Content.substr(Place, End - Place));
    Place = End + 1;
  }
  if (Result.Lines.empty()) return Result;
  if (Result.Lines.front().ends_with('\r')) Result.Return = "\r";
  if (!Content.ends_with('\n') && !Content.ends_with('\r')) Result.Lines.back() += Result.Return;
  return Result;
}

// The section name of a line such as "[nmr]".
std::optional<TextView> SectionOf(TextView Line) {
  Line = TrimWhite(Line);
  const std::size_t Close = Line.find(']');
  if (!Line.starts_with('[') || Close == TextView::npos) return {};
  return TrimWhite(Line.substr(1, Close - 1));
}

struct KeyValue {
  TextView Key;
  TextView Value;
};

std::optional<KeyValue> KeyValueOf(TextView Line) {
  Line = TrimWhite(Line);
  const std::size_t Equals = Line.find('=');
  if (Line.starts_with(';') || Line.starts_with('#') || Equals == TextView::npos) return {};
  TextView Value = TrimWhite(Line.substr(Equals + 1));
  if (Value.size() >= 2 && (Value.front() == '"' || Value.front() == '\'') && Value.front() == Value.back()) {
    Value = Value.substr(1, Value.size() - 2);
  }
  return KeyValue{TrimWhite(Line.substr(0, Equals)), Value};
}

using ValueTable = std::map<Text, Text>;

Text TableKey(TextView Section, TextView Key) { return UpperCase(Section) + "\n" + UpperCase(Key); }

// A file that can't be read holds nothing.
ValueTable ReadTable(const Text& File) {
  ValueTable Table;
  Text Section;
  ProfileLines Content;
  try {
    Content = ReadLines(File);
  } catch (const Failure&) {
    return Table;
  }
  for (const Text& Line : Content.Lines) {
    if (const auto Name = SectionOf(Line)) {
      Section = *Name;
    } else if (const auto Entry = KeyValueOf(Line)) {
      Table.emplace(TableKey(Section, Entry->Key), Entry->Value);
    }
  }
  return Table;
}

// A start-up looks up some four hundred keys of one file: the table is kept until the file is another one.
struct CachedTable {
  Text File;
  fs::file_time_type Time;
  std::uintmax_t Size = 0;
  ValueTable Table;
};

CachedTable& Cache() {
  static CachedTable Table;
  return Table;
}

const ValueTable& TableOf(const Text& File) {
  std::error_code Ignored;
  const fs::file_time_type Time = fs::last_write_time(File, Ignored);
  const std::uintmax_t Size = fs::file_size(File, Ignored);
  CachedTable& Last = Cache();
  if (Last.File != File || Last.Time != Time || Last.Size != Size) Last = {File, Time, Size, ReadTable(File)};
  return Last.Table;
}

// Puts one value into the lines: over the first line with its key, else behind the last filled line of its section,
// else in a new section at the end.
void PutValue(ProfileLines& Content, const ProfileEntry& Entry) {
  std::vector<Text>& Lines = Content.Lines;
  const Text Fresh = Entry.Key + "=" + Entry.Value + Content.Return;
  bool Inside = false;
  bool FirstSection = true;  // a section may stand twice: its first part takes what is new
  std::optional<std::size_t> Behind;
  for (std::size_t Place = 0; Place < Lines.size(); ++Place) {
    if (const auto Name = SectionOf(Lines[Place])) {
      Inside = EqualsIgnoringCase(*Name, Entry.Section);
      if (Inside) FirstSection = !Behind;
      if (Inside && FirstSection) Behind = Place + 1;
    } else if (Inside) {
      const auto Found = KeyValueOf(Lines[Place]);
      if (Found && EqualsIgnoringCase(Found->Key, Entry.Key)) {
        Lines[Place] = Fresh;
        return;
      }
      if (FirstSection && !TrimWhite(Lines[Place]).empty()) Behind = Place + 1;
    }
  }
  if (Behind) {
    Lines.insert(Lines.begin() + static_cast<std::ptrdiff_t>(*Behind), Fresh);
    return;
  }
  if (!Lines.empty() && !TrimWhite(Lines.back()).empty()) Lines.push_back(Content.Return);
  Lines.push_back("[" + Entry.Section + "]" + Content.Return);
  Lines.push_back(Fresh);
}

}  // namespace

Text GetPrivateProfileString(TextView Section, TextView Key, TextView Default, const Text& File) {
  const ValueTable& Table = TableOf(File);
  const auto Entry = Table.find(TableKey(Section, Key));
  return Text((Entry == Table.end() ? Default : TextView(Entry->second)).substr(0, ProfileTextLimit));
}

Text GetProfileString(TextView Section, TextView Key, TextView Default) {
  return GetPrivateProfileString(Section, Key, Default, Platform.WinIniPath());
}

bool WritePrivateProfileStrings(const std::vector<ProfileEntry>& Entries, const Text& File) {
  Cache() = {};  // two writes may fall into one tick of the file's clock
  const EndHeld Held;
  try {
    ProfileLines Content = ReadLines(File);
    for (const ProfileEntry& Entry : Entries) PutValue(Content, Entry);
    Text Fresh;
    for (const Text& Line : Content.Lines) Fresh.append(Line) += '\n';
    ReplaceFile(File, Fresh);
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace zelvanor
