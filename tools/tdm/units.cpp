#include "units.h"

#include <fmt/format.h>

#include "object_text.h"
#include "usage_error.h"

namespace tool {

tdm_addressvalue Units::of(const tdm_addressvalue &address) const
{
  if (bits_ == 0 || bits_ == address.mau) return address;
  // value * mau + bits, divided by the unit, without a product that is larger than the result.
  int64_t value = 0;
  const int64_t rest = address.value % bits_ * address.mau + address.bits;
  if (__builtin_mul_overflow(address.value / bits_, int64_t{address.mau}, &value) ||
      __builtin_add_overflow(value, rest / bits_, &value))
    throw UsageError{
        fmt::format("--unit {}: an address is too large to be told in such units", bits_)};
  auto bit = static_cast<int32_t>(rest % bits_);
  if (bit < 0) {
    bit += bits_;
    --value;
  }
  return {value, bit, bits_, address.bank};
}

std::string Units::name(int mau) const
{
  return bits_ == 0 ? unit_text(mau) : fmt::format("({}-bit units)", bits_);
}

tdm_interval Units::of(const tdm_interval &interval) const
{
  tdm_interval converted = interval;
  converted.low = of(interval.low);
  converted.high = of(interval.high);
  return converted;
}

} // namespace tool
