// Plot numbers as CSV: a header row of names, then one row per point, one column per series, with
// every value written so that reading it back gives the same double. Any thread; pure.
#pragma once

#include <string>
#include <vector>

namespace tarnwell::plot {

struct Column {
  std::string name;
  std::vector<double> values;
};

// Columns of unequal length leave their missing cells empty. Names are quoted when they hold a
// comma or a quote.
std::string csvTable(const std::vector<Column>& columns);

}  // namespace tarnwell::plot
