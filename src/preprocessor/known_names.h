// The pool's copies of an object's two names, once they have been asked for: names don't change,
// so that only the first question has to compose and to search. The names themselves are texts of
// the pool, too, and end with it, though the object may live on.
#pragma once

#include <cstdint>

#include "preprocessor/string_pool.h"

namespace tdm {

class KnownNames {
public:
  enum Which : uint8_t { plain, full };

  /// Whether the pool is still the one in which the object was made.
  [[nodiscard]] bool readable() const { return pool_ == string_pool_number(); }

  /// Null if it isn't known.
  [[nodiscard]] const char *find(Which which) const { return readable() ? texts_[which] : nullptr; }

  /// Keeps a text of the pool, and gives it.
  const char *keep(Which which, const char *text) { return texts_[which] = text; }

private:
  const char *texts_[2] = {nullptr, nullptr};
  uint32_t pool_ = string_pool_number();
};

} // namespace tdm
