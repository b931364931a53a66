// A space as part of the tree for people, and what the objects of that tree share.
#pragma once

#include <string>
#include <vector>

#include <tdm_c/tdm_inspect.h>

#include "file_names.h"
#include "memory_map.h"
#include "object_text.h"
#include "tree.h"

namespace tool {

struct TextContext {
  const FileNames &names;
  bool wants_origins; ///< below each object, where each of its parts was written

  [[nodiscard]] std::vector<std::string> origins(int kind, const void *object) const;

  /// "space linear  id 1, ..."; without a name if that is empty.
  [[nodiscard]] Node node(const std::string &what, const std::string &name, const Facts &facts,
                          int kind, const void *object) const;

  /// The mappings that an object defines, a line each, from its own point of view.
  [[nodiscard]] std::vector<Node> mappings(const End &owner, tdm_arr *mappings) const;
};

[[nodiscard]] Node space_node(const TextContext &context, const tdm_space *space,
                              const std::vector<Region> &regions);

/// What the tables of a space say.
[[nodiscard]] Facts facts_of(const tdm_copy_table *copies);
[[nodiscard]] Facts facts_of(const tdm_direct_init *direct);

} // namespace tool
