// What a walk over a space meets, as a tree of facts: collected once, then written as text or as
// JSON. An item is a definition of the space, a layout or a statement; a fact is what one getter
// says of it, under the key that JSON has for it. The writers know kinds of values and no keys, so
// a further getter is one more fact in ItemReader.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include <tdm_c/tdm.h>

namespace tool {

enum class ItemKind {
  stack_definition,
  heap_definition,
  copy_table,
  direct_init,
  vector_table,
  reserved_range,
  layout,
  assignment,
  block,
  if_statement,
  section,
  group,
  heap,
  memcopy,
  reserved,
  select,
  stack,
  struct_statement,
  copytable,
  walk_ended ///< what comes behind wasn't read, as the walk failed
};

/// As JSON has it.
[[nodiscard]] const char *kind_name(ItemKind kind);

// ---- values; addresses and sizes count in units (MAUs) of the space

/// The library couldn't tell.
struct Unknown {};
/// In text left out if it is 0, which stands for none, too.
struct Size {
  int64_t units;
};
/// In text left out if it is 0 or 1.
struct Alignment {
  int64_t units;
};
struct Address {
  int64_t value;
};
struct Range {
  int64_t low, high;
};
struct Vectors {
  int64_t number;
};
/// On attributes, of a select. In text left out if there are none.
struct Conditions {
  int64_t number;
};
/// What a condition wanted to know.
struct Question {
  const char *about; ///< "exists" or "defined"
  std::string name;
  bool answer;
};
/// A flag that is false is left out in text.
using Value = std::variant<Unknown, bool, std::string, Size, Alignment, Address, Range, Vectors,
                           Conditions, std::vector<Range>, std::vector<Question>>;

struct Fact {
  const char *key;
  Value value;
};

struct Item {
  ItemKind kind;
  std::optional<std::string> name;
  const tdm_source_location *location; ///< of the spec; null if it isn't known
  std::vector<Fact> facts;
  std::vector<Item> children;
  size_t selection = 0; ///< of a select: its number in the walk, from 0
};

struct Outline {
  std::string space; ///< its full name
  int mau = 0;
  std::vector<Item> items;
  /// Each once, in the order in which they came; that of the walk itself is the last one.
  std::vector<std::string> failures;
  bool complete = true; ///< the walk came to its end
};

/// The names for which conditions get a yes.
struct Answers {
  std::set<std::string, std::less<>> sections;
  std::set<std::string, std::less<>> symbols;
};

/// Called at each select, while its environment lives.
using AtSelection = std::function<void(tdm_selection_statement *, tdm_statement_env *)>;

/// Walks the space.
[[nodiscard]] Outline read_outline(tdm_space *space, const Answers &answers,
                                   const AtSelection &at_selection = {});

} // namespace tool
