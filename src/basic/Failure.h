#pragma once

#include <string>

namespace zelvanor {

// The one exception type. A helper throws it, the routine that reports it catches it at its end.
// What holds a short English text without a final full stop; Number is 0 unless a caller tells failures apart by it.
struct Failure {
  std::string What;
  int Number = 0;

  explicit Failure(std::string What, int Number = 0) : What(std::move(What)), Number(Number) {}
};

namespace failures {
inline constexpr const char* Overflow = "Overflow";
inline constexpr const char* Subscript = "Subscript out of range";
inline constexpr const char* TypeMismatch = "Type mismatch";
inline constexpr const char* DivisionByZero = "Division by zero";
inline constexpr const char* PastEnd = "Input past end of file";
inline constexpr const char* FileNotFound = "File not found";
inline constexpr const char* PathNotFound = "Path not found";
inline constexpr const char* PermissionDenied = "Permission denied";
inline constexpr const char* PathAccess = "Path/File access error";
inline constexpr const char* DiskFull = "Disk full";
inline constexpr const char* FileTooLarge = "The file is too large";
inline constexpr const char* TooManyFiles = "Too many files";
inline constexpr const char* BadFileNumber = "Bad file name or number";
inline constexpr const char* DeviceError = "Device I/O error";
inline constexpr const char* NoProgram = "The file is not a program";
// Of a control that refuses; callers that expect it drop it.
inline constexpr const char* CannotPerform = "Can't perform requested operation";
inline constexpr const char* OutOfMemory = "Out of memory";
}  // namespace failures

// The text for an errno value of a file or process call.
const char* FailureTextFromErrno(int Code);

}  // namespace zelvanor
