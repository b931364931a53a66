// What a walk over a space meets, as a tree of facts: collected once, then written as text or as
// JSON. An item is a definition of the space, a layout or a statement; a fact is what one getter
// says of it, under the key that JSON has for it. The writers know kinds of values and no keys, so
// a further getter is one more fact in ItemReader. Beside the facts, which are evaluated, an item
// has what the text says and the rules in force, in the form of JSON.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

#include <tdm_c/tdm.h>

#include "json_values.h"
#include "model_json.h"

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

/// The library couldn't tell what the expression gives.
struct Unknown {
  std::string expression; ///< may be empty
};
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
/// A range in a bank of the space.
struct BankedRange {
  int64_t low, high;
  int32_t bank = -1; ///< -1 for none
};
/// -1 for none.
struct Bank {
  int32_t number;
};
struct Vectors {
  int64_t number;
};
struct Count {
  int64_t number;
};
/// A phrase for text alone, without the key. "" is left out.
struct Phrase {
  std::string text;
};
/// What a condition wanted to know.
struct Question {
  const char *about; ///< "exists"; `defined` asks nobody, and counts 0 in a condition
  std::string name;
  bool answer;
};
/// A flag that is false is left out in text.
using Value = std::variant<Unknown, bool, std::string, Size, Alignment, Address, Range, Bank,
                           Vectors, Count, Phrase, std::vector<BankedRange>, std::vector<Question>>;

struct Fact {
  const char *key; ///< of a phrase: ""
  Value value;
  bool in_text = true;
};

struct Item {
  ItemKind kind;
  std::optional<std::string> name{};
  std::optional<tdm_srcpos> place{};
  std::vector<Fact> facts{};
  std::string head{};               ///< in text behind kind and name
  std::vector<std::string> lines{}; ///< in text below it
  Json written{};                   ///< as `show` has it; null for what says nothing
  Json rules{};                     ///< in force at a statement, or in a group; null elsewhere
  std::vector<Item> children{};
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
};

/// Called at each select, while its environment lives.
using AtSelection = std::function<void(tdm_selection_statement *, tdm_statement_env *)>;

/// Walks the space.
[[nodiscard]] Outline read_outline(tdm_space *space, const Answers &answers,
                                   const ModelContext &context,
                                   const AtSelection &at_selection = {});

} // namespace tool
