#include <sys/mman.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

// Matrices and lists of lines on large pages. A page costs microseconds when it is first touched, on virtual machines
// several: a quarter of the time of an exact spectrum of twelve spins went into pages of 4 KiB. Where the system has no
// large pages to give, the small ones stay.

namespace {

constexpr std::uintptr_t LargePage = std::uintptr_t{2} << 20;
constexpr std::size_t WorthAsking = std::size_t{1} << 18;

// Asks for large pages wherever the memory lies, with those that it shares with its neighbours.
void AskForLargePages(void* Memory, std::size_t Size) {
  const auto Place = reinterpret_cast<std::uintptr_t>(Memory);
  const std::uintptr_t Before = Place % LargePage;
  const std::size_t Length = (Before + Size + LargePage - 1) / LargePage * LargePage;
  madvise(static_cast<char*>(Memory) - Before, Length, MADV_HUGEPAGE);
}

}  // namespace

void* operator new(std::size_t Size) {
  void* Memory = std::malloc(Size > 0 ? Size : 1);
  if (Memory == nullptr) throw std::bad_alloc();
  if (Size >= WorthAsking) AskForLargePages(Memory, Size);
  return Memory;
}

void operator delete(void* Memory) noexcept { std::free(Memory); }
void operator delete(void* Memory, std::size_t) noexcept { std::free(Memory); }
