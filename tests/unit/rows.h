// Tables of inputs and expected texts that stand in files of their own, tests/unit/**/*.json.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tdm_test {

/// One row; what it leaves out at its end is empty.
class Row {
public:
  explicit Row(std::vector<std::string> texts) : texts_(std::move(texts)) {}

  [[nodiscard]] std::size_t size() const { return texts_.size(); }
  [[nodiscard]] const std::string &operator[](std::size_t index) const
  {
    static const std::string nothing;
    return index < texts_.size() ? texts_[index] : nothing;
  }

private:
  std::vector<std::string> texts_;
};

/// A table of a file, which is given from tests/unit on. Each character of the file, \u0000 to
/// \u00ff, stands for one byte.
[[nodiscard]] std::vector<Row> rows(const std::string &file, const std::string &table);

} // namespace tdm_test
