// The pool's copies of an object's two names, once they have been asked for: names don't change,
// so that only the first question has to compose and to search. The pool may end and begin anew
// while the object lives; what was kept is forgotten then.
#pragma once

#include <cstdint>

#include "preprocessor/string_pool.h"

namespace tdm {

class KnownNames {
public:
  enum Which : uint8_t { plain, full };

  /// Null if it isn't known to this pool.
  [[nodiscard]] const char *find(Which which) const
  {
    return pool_ == string_pool_number() ? texts_[which] : nullptr;
  }

  /// Keeps a text of the pool, and gives it.
  const char *keep(Which which, const char *text)
  {
    if (pool_ != string_pool_number()) *this = {};
    pool_ = string_pool_number();
    return texts_[which] = text;
  }

private:
  const char *texts_[2] = {nullptr, nullptr};
  uint32_t pool_ = 0;
};

} // namespace tdm
