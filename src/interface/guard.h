// The guard that stands around every exported function which can fail: whatever is thrown below
// it, by pointer or by value, becomes a result that says "nothing", and the text of the failure.
// No other file of this folder catches anything.
#pragma once

#include "interface/last_error.h"
#include "interface/values.h"

namespace tdm {

/// Keeps the failure that is being handled, and frees it. Call it inside a handler only.
/// `outside_family` says what becomes of the failures that don't come below TDMFileException.
void keep_current_failure(Tell outside_family) noexcept;

/// Calls, and gives `otherwise()` after a failure.
template <class Call, class Otherwise>
auto guarded(Call call, Otherwise otherwise, Tell outside_family = Tell::last_error)
    -> decltype(call())
{
  try {
    return call();
  } catch (...) {
    keep_current_failure(outside_family);
  }
  return otherwise();
}

/// Calls for an array, and gives an empty one after a failure.
template <class Element, class Call> tdm_arr *guarded_array(Call call)
{
  return guarded(call, [] { return empty_array(sizeof(Element)); });
}

/// Calls, and gives null or 0 after a failure.
template <class Call> auto guarded(Call call) -> decltype(call())
{
  return guarded(call, [] { return decltype(call())(); });
}

} // namespace tdm
