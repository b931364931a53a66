// The answers of the verb `map`, as text and as JSON.
#pragma once

#include <ostream>
#include <vector>

#include "routes.h"
#include "session.h"
#include "space_table.h"
#include "units.h"

namespace tool {

/// The rows of a space.
struct SpaceTable {
  const tdm_space *space;
  std::vector<SpaceRow> rows;
};

void write_text(const Answer &answer, const Session &session, const Units &units,
                std::ostream &out);
void write_text(const std::vector<SpaceTable> &tables, const Units &units, std::ostream &out);

void write_json(const Answer &answer, const Session &session, const Units &units,
                std::ostream &out);
void write_json(const std::vector<SpaceTable> &tables, const Units &units, std::ostream &out);

} // namespace tool
