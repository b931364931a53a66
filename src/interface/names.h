// The names of model objects, as callers get them.
#pragma once

#include "interface/guard.h"
#include "interface/values.h"
#include "preprocessor/known_names.h"

namespace tdm {

/// What `compose` gives, as a text of the pool that is kept with the object.
template <class Object, class Compose>
[[nodiscard]] const char *known_name(const Object &object, KnownNames::Which which, Compose compose)
{
  if (const char *known = object.known_names.find(which)) return known;
  return guarded([&] {
    if (!object.known_names.readable())
      throw new TDMFileException("the names of a spec end with tdm_cleanup");
    return object.known_names.keep(which, text_result(compose()));
  });
}

template <class Object> [[nodiscard]] const char *name_result(const Object &object)
{
  return known_name(object, KnownNames::plain, [&] { return object.name; });
}

template <class Object> [[nodiscard]] const char *full_name_result(const Object &object)
{
  return known_name(object, KnownNames::full, [&] { return object.full_name(); });
}

} // namespace tdm
