// The small values of the JSON output; the verbs share their form.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>

#include <tdm_c/tdm.h>

#include "file_names.h"

namespace tool {

// Keeps the order in which keys are written.
using Json = nlohmann::ordered_json;

/// Of all JSON that the tool writes; rises when a reader of the old form would go wrong.
inline constexpr int json_schema_version = 1;

[[nodiscard]] inline Json json_text(const char *text)
{
  return text != nullptr ? Json(text) : Json(nullptr);
}

[[nodiscard]] inline Json json_address(const tdm_addressvalue &address)
{
  return {{"value", address.value},
          {"bit", address.bits},
          {"mau_bits", address.mau},
          {"bank", address.bank >= 0 ? Json(address.bank) : Json(nullptr)}};
}

[[nodiscard]] inline Json json_interval(const tdm_interval &interval)
{
  return {{"low", json_address(interval.low)},
          {"high", json_address(interval.high)},
          {"mask", {{"width", interval.width}, {"bits", interval.bits}}}};
}

[[nodiscard]] inline Json json_location(const FileNames &names, const tdm_source_location *location)
{
  if (location == nullptr) return nullptr;
  return {{"file", names.shown(tdm_source_location_get_filename(location))},
          {"line", tdm_source_location_get_line_number(location)},
          {"column", tdm_source_location_get_column_number(location)}};
}

/// Names may hold bytes that aren't UTF-8; a reader of JSON gets a replacement for those.
inline void write_json(std::ostream &out, const Json &json)
{
  out << json.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace tool
