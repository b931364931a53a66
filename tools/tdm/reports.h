// What `check` found, in the forms that programs read.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "findings.h"

namespace tool {

/// One description, checked.
struct Checked {
  std::vector<std::string> files; ///< that the user gave
  bool in_order = false;          ///< warnings don't count
  std::vector<Finding> findings;
};

/// Form: "json", "sarif" (SARIF 2.1.0) or "github" (commands for a workflow of GitHub).
void write_report(std::string_view form, const std::vector<Checked> &descriptions,
                  std::ostream &out);

} // namespace tool
