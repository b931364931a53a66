// An outline as JSON. Addresses and sizes are plain numbers, in units (MAUs) of the space.
#pragma once

#include "file_names.h"
#include "json_values.h"
#include "outline.h"

namespace tool {

[[nodiscard]] Json json_value(const Value &value);

/// Kind, name, location and facts, without what it holds.
[[nodiscard]] Json json_item(const Item &item, const FileNames &names);

[[nodiscard]] Json json_items(const std::vector<Item> &items, const FileNames &names);

[[nodiscard]] Json json_space(const Outline &outline);

/// "complete" and "failures".
void add_outcome(Json &document, const Outline &outline, const FileNames &names);

} // namespace tool
