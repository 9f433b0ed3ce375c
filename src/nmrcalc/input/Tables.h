#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nmrcalc {

// The tables of increments, read from text files at run time.
//
//   ; comment, to the end of the line
//   [name column column ...]      opens a table and names its columns
//   key number number ...         a row: as many numbers as columns
//
// Names and keys are case-sensitive. A key stands once in its table, a table once in its file.

struct Table {
  std::vector<std::string> Columns{};
  std::map<std::string, std::vector<double>, std::less<>> Rows{};
  std::size_t Line = 0;  // of its heading, from 0
};

struct TableFile {
  std::string Path{};
  std::map<std::string, Table, std::less<>> Tables{};
};

// What a program needs to find in a file.
struct RequiredTable {
  const char* Name = nullptr;
  std::size_t Columns = 0;
};

// Reads the file and checks it against the list. Throws Failure with file, line and reason.
TableFile ReadTables(const std::string& Path, const std::vector<RequiredTable>& Required);

// A row, or null when the table has none of that key.
const std::vector<double>* FindRow(const TableFile& File, std::string_view TableName, std::string_view Key);

// A number of a row. Throws Failure naming table and key when the row is not there.
double TableValue(const TableFile& File, std::string_view TableName, std::string_view Key, std::size_t Column = 0);

}  // namespace nmrcalc
