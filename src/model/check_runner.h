// Runs those checks that a model may fail and still be read: nothing behind them builds on what
// they make sure of.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "common/failures.h"

namespace tdm {

class CheckRunner {
public:
  /// The first failure goes to `kept`, the others nowhere; with null each failure goes on.
  explicit CheckRunner(std::optional<std::string> *kept) : kept_(kept) {}

  template <typename Check> void run(Check check) const
  {
    try {
      check();
    } catch (TDMFileException *failure) {
      if (kept_ == nullptr) throw;
      const std::unique_ptr<TDMFileException> owned(failure);
      if (!kept_->has_value()) *kept_ = owned->text();
    }
  }

private:
  std::optional<std::string> *kept_;
};

} // namespace tdm
