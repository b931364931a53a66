// What the value of an expression counts: addresses of a space, sizes in MAUs, or nothing that
// could be told from its text.
//
// Only `addressof` and `sizeof` have a unit, and what is calculated with them keeps it where that
// makes sense: an address and a size give an address, two addresses a size, and a number goes with
// either.
#pragma once

#include <cstdint>
#include <string>

#include "language/expr_records.h"

namespace tdm {

struct Quantity {
  enum class Kind {
    unknown,
    number, ///< without a unit
    address,
    size
  };
  Kind kind = Kind::unknown;
  std::int32_t mau = 0; ///< bits of the units of an address or a size
};

/// The units of the place where an expression stands.
class Units {
public:
  [[nodiscard]] virtual std::int32_t space_mau() const = 0;
  /// 0 for a memory that there isn't.
  [[nodiscard]] virtual std::int32_t memory_mau(const std::string &memory) const = 0;

protected:
  ~Units() = default;
};

/// Takes variables for numbers.
[[nodiscard]] Quantity quantity_of(const TDMFileExpression &record, const Units &units);

} // namespace tdm
