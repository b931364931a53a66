// The names of model objects, as callers get them.
#pragma once

#include "interface/guard.h"
#include "interface/values.h"
#include "preprocessor/known_names.h"

namespace tdm {

template <class Object> [[nodiscard]] const char *name_result(const Object &object)
{
  if (const char *known = object.known_names.find(KnownNames::plain)) return known;
  return guarded(
      [&] { return object.known_names.keep(KnownNames::plain, text_result(object.name)); });
}

template <class Object> [[nodiscard]] const char *full_name_result(const Object &object)
{
  if (const char *known = object.known_names.find(KnownNames::full)) return known;
  return guarded(
      [&] { return object.known_names.keep(KnownNames::full, text_result(object.full_name())); });
}

} // namespace tdm
