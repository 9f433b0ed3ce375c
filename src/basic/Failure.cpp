#include "basic/Failure.h"

#include <cerrno>

namespace zelvanor {

const char* FailureTextFromErrno(int Code) {
  switch (Code) {
    case ENOENT:
      return failures::FileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
      return failures::PathNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
      return failures::PermissionDenied;
    case EISDIR:
      return failures::PathAccess;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return failures::DiskFull;
    case EMFILE:
    case ENFILE:
      return failures::TooManyFiles;
    case ENOMEM:
    case E2BIG:
      return failures::OutOfMemory;
    case ENOEXEC:
      return failures::NoProgram;
    default:
      return failures::DeviceError;
  }
}

}  // namespace zelvanor
