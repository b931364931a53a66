// Addresses in other units than those of the object that they belong to, for those who count in
// bytes everywhere.
#pragma once

#include <string>

#include <tdm_c/tdm.h>

namespace tool {

class Units {
public:
  /// Of so many bits; 0 keeps the units of each object.
  explicit Units(int bits) : bits_(bits) {}

  /// Throws UsageError for an address that is too large to be told so.
  [[nodiscard]] tdm_addressvalue of(const tdm_addressvalue &address) const;

  /// What an object counts in, as it is told: "(16-bit MAUs)", or "(8-bit units)".
  [[nodiscard]] std::string name(int mau) const;

  /// The mask, which repeats with the units of the object, stays as it is.
  [[nodiscard]] tdm_interval of(const tdm_interval &interval) const;

private:
  int bits_;
};

} // namespace tool
