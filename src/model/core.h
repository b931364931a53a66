// A core: one instance of an architecture in a processor, with its buses and address spaces.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/block_pool.h"
#include "common/tdm_object.h"
#include "common/text.h"
#include "layout/section_names.h"
#include "model/bus.h"
#include "model/name_index.h"
#include "model/space.h"
#include "preprocessor/known_names.h"

class TDMFileCore;

namespace tdm {
class ArgumentScope;
class CheckRunner;
class Templates;
} // namespace tdm

struct TDMCore : TDMObject {
  /// Runs both passes over the chain of architectures that the record names.
  TDMCore(const TDMFileCore &record, const tdm::Text &processor, const tdm::Templates &templates,
          const tdm::ArgumentScope &scope);
  ~TDMCore();
  TDMCore(const TDMCore &) = delete;
  TDMCore &operator=(const TDMCore &) = delete;

  [[nodiscard]] std::string full_name() const;

  /// The first space whose full name or plain name is this one, or null.
  [[nodiscard]] TDMSpace *find_space(std::string_view wanted) const
  {
    return may_be_full_name(wanted) ? find_space_by_any_name(wanted) : by_name_.find(wanted);
  }
  [[nodiscard]] TDMSpace *find_space_by_id(int64_t id) const;
  /// The first space of exactly this full name, or of exactly this plain name, or null.
  [[nodiscard]] TDMSpace *find_space_by_full_name(std::string_view full_name) const;
  [[nodiscard]] TDMSpace *find_space_by_plain_name(std::string_view plain_name) const;

  /// Of the spaces; 0 if none is above it.
  [[nodiscard]] int32_t largest_space_id() const { return largest_space_id_; }

  /// Appends a space; its names and id must be final.
  void add_space(std::unique_ptr<TDMSpace> space);

  /// The checks that close a core once its processor stands; adds the placeholder space and takes
  /// start address and copy table over from the spaces. A core whose spaces have overlapping
  /// mappings can be read.
  void check(const tdm::CheckRunner &runner);

  /// Keeps the start address of one of the spaces as that of the core; a second one is refused.
  void set_start_address(TDMSpace &space, const TDMSourceLocation &place);
  /// Makes the space of a copy table that of the core, unless the core refers to another.
  void set_copy_table_space(TDMSpace &space, const TDMSourceLocation &place);

  tdm::Text name;
  mutable tdm::KnownNames known_names;
  tdm::Text architecture_name;
  const tdm::Text *processor_name;
  tdm::PooledVector<int32_t> endianness; ///< enum tdm_endianness, in the order of the text
  tdm::PooledVector<std::unique_ptr<TDMBus>> buses;
  tdm::PooledVector<std::unique_ptr<TDMSpace>> spaces;
  const TDMStartAddress *start_address = nullptr;
  TDMSpace *start_address_space = nullptr;
  TDMSpace *copytable_space = nullptr;
  int32_t space_id_offset = 0;
  bool imported = false;
  tdm::PooledVector<TDMCore *> imported_cores;
  tdm::SectionNames section_names;

private:
  void check_names() const;
  /// Whether a colon stands where full names have their first one: behind the name of the
  /// processor, or in front of all else.
  [[nodiscard]] bool may_be_full_name(std::string_view text) const
  {
    const size_t colon = processor_name->size();
    return (colon < text.size() && text[colon] == ':') || (!text.empty() && text[0] == ':');
  }
  [[nodiscard]] TDMSpace *find_space_by_any_name(std::string_view wanted) const;
  [[nodiscard]] uint32_t place_by_full_name(std::string_view full_name) const;

  tdm::NameIndex<TDMSpace> by_name_{spaces};
  int32_t largest_space_id_ = 0;
};
