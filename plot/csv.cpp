#include "plot/csv.h"

#include <fmt/format.h>

#include <algorithm>

namespace tarnwell::plot {
namespace {

std::string quoted(const std::string& name) {
  if (name.find_first_of(",\"") == std::string::npos) return name;
  std::string out = "\"";
  for (const char c : name) {
    if (c == '"') out += '"';
    out += c;
  }
  out += '"';
  return out;
}

}  // namespace

std::string csvTable(const std::vector<Column>& columns) {
  std::string out;
  std::size_t rows = 0;
  for (std::size_t c = 0; c < columns.size(); ++c) {
    if (c != 0) out += ',';
    out += quoted(columns[c].name);
    rows = std::max(rows, columns[c].values.size());
  }
  out += '\n';
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 0; c < columns.size(); ++c) {
      if (c != 0) out += ',';
      // Shortest text that reads back as the same double.
      if (r < columns[c].values.size()) out += fmt::format("{}", columns[c].values[r]);
    }
    out += '\n';
  }
  return out;
}

}  // namespace tarnwell::plot
