#pragma once

#include "basic/Types.h"

namespace zelvanor::fuzz {

// A reader under test. Read takes one input through it and all that stands behind it, and stops the process where a
// promise is broken. It returns whether the reader has taken the input: the verdict of the seeds' names.
struct Target {
  const char* Name;
  bool (*Read)(TextView Input);
};

extern const Target BackendParamTarget, BackendSpectTarget, BackendTablesTarget, DocumentTarget, HostTextTarget,
    MeasuredFileTarget, MeasuredFolderTarget, PeakMapTarget, ParamResultsTarget, ProfileTarget, ScriptTarget,
    SettingsTarget, SpectResultsTarget, TypeFileTarget, TypeRulesTarget, ZMatrixTarget;

}  // namespace zelvanor::fuzz
