#pragma once

#include <string>

namespace nmrcalc {

// Files around a run of an engine.

// Empty when it cannot be read.
std::string ReadWholeFile(const std::string& Path);

// Throws Failure with what to do.
void WriteScratchFile(const std::string& Path, const std::string& Text);

// A new directory below Base or, where that is empty, below the system's for temporary files. Throws Failure.
std::string MakeScratchDirectory(const std::string& Base);

// The end of an output on one line, for a message; "nothing" when it holds no word.
std::string LastWords(const std::string& Output);

}  // namespace nmrcalc
