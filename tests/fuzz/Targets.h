#pragma once

#include "basic/Types.h"

namespace zelvanor::fuzz {

// A reader under test. Read takes one input through it and all that stands behind it, and stops the process where a
// promise is broken. It returns whether the reader has taken the input: the verdict of the seeds' names.
struct Target {
  const char* Name;
  bool (*Read)(TextView Input);
};

extern const Target BackendParamTarget;
extern const Target BackendSpectTarget;
extern const Target BackendTablesTarget;
extern const Target DocumentTarget;
extern const Target HostTextTarget;
extern const Target MeasuredFileTarget;
extern const Target MeasuredFolderTarget;
extern const Target ParamResultsTarget;
extern const Target PeakMapTarget;
extern const Target ProfileTarget;
extern const Target ScriptTarget;
extern const Target SettingsTarget;
extern const Target SpectResultsTarget;
extern const Target TypeFileTarget;
extern const Target TypeRulesTarget;
extern const Target ZMatrixTarget;

}  // namespace zelvanor::fuzz
