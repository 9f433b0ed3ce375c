#pragma once

#include <string>

namespace nmrcalc {

// What engines have computed, kept in the user's cache directory by a hash of their input; and the folders of runs
// that did not come to their end, whose files let the next run go on.

// $XDG_CACHE_HOME/zelvanor/engines, else .cache/zelvanor/engines in the home directory; empty when there is neither.
std::string CacheDirectory();

// 128 bits of FNV-1a in hexadecimal digits (Fowler, Noll, Vo; draft-eastlake-fnv).
std::string HashOf(const std::string& Text);

// The output that was kept for this input; empty when there is none.
std::string FindInCache(const std::string& Input);

// Keeps an output, and removes the oldest entries beyond the limit in bytes. What cannot be kept is not kept.
void KeepInCache(const std::string& Input, const std::string& Output, double Limit);

// The folder of an unfinished run of this input, made when missing and locked against a second run while it lives;
// Path is empty when it cannot be had.
struct RestartFolder {
  explicit RestartFolder(const std::string& Input);
  ~RestartFolder();
  RestartFolder(const RestartFolder&) = delete;
  RestartFolder& operator=(const RestartFolder&) = delete;

  std::string Path{};
  int Lock = -1;
};

// Empties it and, when it has no lock any more, takes it away.
void DropRestart(RestartFolder& Folder);

}  // namespace nmrcalc
