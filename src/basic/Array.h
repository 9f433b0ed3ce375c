#pragma once

#include <exception>
#include <new>
#include <span>
#include <vector>

#include "basic/Types.h"

namespace zelvanor {

namespace detail {
// A vector of new elements; too many for the memory is a Failure as any other.
template <class T>
std::vector<T> MakeElements(std::size_t Count) {
  try {
    return std::vector<T>(Count);
  } catch (const std::exception&) {
    throw Failure(failures::OutOfMemory);
  }
}

// Upper bounds run from 0, so that even an empty array has its one spare element.
inline std::size_t SizeFromBound(int UpperBound) {
  if (UpperBound < 0) throw Failure(failures::Subscript);
  return static_cast<std::size_t>(UpperBound) + 1;
}
}  // namespace detail

// An array by upper bound: elements 0..UpperBound, checked. Hot loops take the Span once and run bare.
template <class T>
class Array {
 public:
  Array() : Stored(1) {}
  explicit Array(int UpperBound) : Stored(detail::SizeFromBound(UpperBound)) {}

  // Loses the old elements; the new ones are zero or blank.
  void ReDim(int UpperBound) { Stored = detail::MakeElements<T>(detail::SizeFromBound(UpperBound)); }
  // The elements of a list, and the spare one behind them; Array<FixedText> takes a list of texts.
  template <class List>
  void Assign(const List& Elements) {
    std::vector<T> Fresh;
    try {
      Fresh.reserve(Elements.size() + 1);
    } catch (const std::exception&) {
      throw Failure(failures::OutOfMemory);
    }
    for (const auto& Element : Elements) Fresh.emplace_back(Element);
    Fresh.emplace_back();
    Stored = std::move(Fresh);
  }
  void ReDimPreserve(int UpperBound) {
    const std::size_t Size = detail::SizeFromBound(UpperBound);
    try {
      Stored.resize(Size);
    } catch (const std::exception&) {
      throw Failure(failures::OutOfMemory);
    }
  }
  int UpperBound() const { return static_cast<int>(Stored.size()) - 1; }

  T& operator[](int Index) { return Stored[Check(Index)]; }
  const T& operator[](int Index) const { return Stored[Check(Index)]; }

  std::span<T> Span() { return Stored; }
  std::span<const T> Span() const { return Stored; }

  friend bool operator==(const Array&, const Array&) = default;

 private:
  std::size_t Check(int Index) const {
    const auto Place = static_cast<std::size_t>(Index);
    if (Index < 0 || Place >= Stored.size()) throw Failure(failures::Subscript);
    return Place;
  }

  std::vector<T> Stored;
};

// Two dimensions by upper bounds, rows outermost.
template <class T>
class Array2 {
 public:
  Array2() : Stored(1) {}
  Array2(int UpperRow, int UpperColumn) { ReDim(UpperRow, UpperColumn); }

  void ReDim(int UpperRow, int UpperColumn) {
    const std::size_t NewRows = detail::SizeFromBound(UpperRow);
    const std::size_t NewColumns = detail::SizeFromBound(UpperColumn);
    Stored = detail::MakeElements<T>(NewRows * NewColumns);
    Rows = NewRows;
    Columns = NewColumns;
  }
  int UpperRow() const { return static_cast<int>(Rows) - 1; }
  int UpperColumn() const { return static_cast<int>(Columns) - 1; }

  T& operator()(int Row, int Column) { return Stored[Check(Row, Column)]; }
  const T& operator()(int Row, int Column) const { return Stored[Check(Row, Column)]; }

  // One row's elements, checked once.
  std::span<T> Row(int Row) { return std::span<T>(Stored).subspan(Check(Row, 0), Columns); }
  std::span<const T> Row(int Row) const { return std::span<const T>(Stored).subspan(Check(Row, 0), Columns); }
  std::span<T> Span() { return Stored; }
  std::span<const T> Span() const { return Stored; }

  friend bool operator==(const Array2&, const Array2&) = default;

 private:
  std::size_t Check(int Row, int Column) const {
    const auto R = static_cast<std::size_t>(Row);
    const auto C = static_cast<std::size_t>(Column);
    if (Row < 0 || Column < 0 || R >= Rows || C >= Columns) throw Failure(failures::Subscript);
    return R * Columns + C;
  }

  std::size_t Rows = 1;
  std::size_t Columns = 1;
  std::vector<T> Stored;
};

}  // namespace zelvanor
