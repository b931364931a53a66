// Address spaces: what a core addresses, and where sections are located. Three kinds: those that
// a description defines, the placeholder for what isn't allocated, and those that stand for a
// group of spaces.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "common/block_pool.h"
#include "common/tdm_object.h"
#include "common/text.h"
#include "layout/bank_def.h"
#include "layout/copy_table.h"
#include "layout/input_modification.h"
#include "layout/layout_space.h"
#include "layout/range.h"
#include "layout/reserved_range.h"
#include "layout/section_layout.h"
#include "layout/stack_heap_def.h"
#include "layout/start_address.h"
#include "layout/vector_table.h"
#include "mapping/interval.h"
#include "mapping/map_graph.h"
#include "mapping/mapping.h"
#include "preprocessor/known_names.h"

struct TDMBus;
struct TDMCore;
class TDMFileMapping;
class TDMFileSpace;
struct TDMSpaceWalker;

namespace tdm {
class ArgumentScope;
class BusesInReach;
} // namespace tdm

struct TDMSpace : TDMMapDestination, TDMMapSource, TDMObject {
  int get_mau_size() const override { return mau_size; }
  void get_full_name(std::string &out) const override;
  void add_incoming_mapping(TDMMapping *mapping) override { incoming_.push_back(mapping); }
  const tdm::MappingList &incoming_mappings() const override { return incoming_; }

  /// Refuses mappings that share addresses and data lines.
  virtual void check_mappings() const = 0;
  /// Finds the destinations of the mappings among the spaces and buses of the core, then all else
  /// that the definition names.
  virtual void resolve_mappings(TDMCore &core, const tdm::BusesInReach &buses,
                                const TDMFileSpace &record) = 0;
  virtual ~TDMSpace();
  /// Reads the space to the walker: its definitions, then its layouts. A failure ends the walk.
  virtual void walk(TDMSpaceWalker &walker);

  void add_outgoing_mapping(TDMMapping *mapping) override { outgoing_.push_back(mapping); }
  const tdm::MappingList &outgoing_mappings() const override { return outgoing_; }

  TDMSpace(const TDMSpace &) = delete;
  TDMSpace &operator=(const TDMSpace &) = delete;

  [[nodiscard]] std::string full_name() const;
  /// Those that the definition of this object states, whichever way they go.
  [[nodiscard]] std::span<TDMMapping *const> own_mappings() const { return outgoing_.own(); }
  [[nodiscard]] const Interval &valid_interval() const { return valid_interval_; }
  /// The space as layouts see it.
  [[nodiscard]] const tdm::LayoutSpace &layout_view() const { return view_; }

  tdm::Text name;
  mutable tdm::KnownNames known_names;
  const tdm::Text *core_name = nullptr;
  const tdm::Text *processor_name = nullptr;
  int32_t id = 0;
  int32_t mau_size = 0; ///< bits
  int32_t alignment = 0;
  int32_t page_size = 0;
  tdm::ObjectList<std::unique_ptr<TDMRange>> page_ranges;
  bool page_restrict_sections = false;
  int32_t locate_direction = 0; ///< enum tdm_locate_direction
  TDMSpace *address_literal_space = nullptr;
  tdm::PooledVector<std::unique_ptr<TDMStackDef>> stacks;
  tdm::PooledVector<std::unique_ptr<TDMHeapDef>> heaps;
  std::unique_ptr<TDMCopyTable> copy_table;
  std::unique_ptr<TDMDirectInit> direct_init;
  tdm::PooledVector<std::unique_ptr<TDMVectorTable>> vector_tables;
  tdm::PooledVector<std::unique_ptr<TDMReservedRange>> reserved_ranges;
  std::unique_ptr<TDMStartAddress> start_address;
  std::unique_ptr<TDMBankDef> bank_def;
  tdm::PooledVector<std::unique_ptr<TDMSectionLayout>> section_layouts;
  tdm::ObjectSet<int32_t>
      prohibited_spaces; ///< ids of the spaces that sections here can't refer to
  tdm::PooledVector<std::unique_ptr<TDMInputModification>> input_modifications;

protected:
  TDMSpace() = default;

  /// From the lowest source offset of the mappings to the highest end, holes counted in; the empty
  /// interval at -1 without mappings.
  void compute_valid_interval();

  Interval valid_interval_;
  tdm::MappingList outgoing_; ///< the own ones belong to it
  tdm::MappingList incoming_;

private:
  class View final : public tdm::LayoutSpace {
  public:
    explicit View(const TDMSpace &space) : space_(space) {}

    [[nodiscard]] const TDMMapSource &source() const override { return space_; }
    [[nodiscard]] const TDMMapDestination &destination() const override { return space_; }
    [[nodiscard]] int32_t page_size() const override { return space_.page_size; }
    [[nodiscard]] const tdm::ObjectList<std::unique_ptr<TDMRange>> &page_ranges() const override
    {
      return space_.page_ranges;
    }
    [[nodiscard]] const tdm::LayoutSpace *address_literal_space() const override
    {
      return space_.address_literal_space != nullptr ? &space_.address_literal_space->view_
                                                     : nullptr;
    }

  private:
    const TDMSpace &space_;
  };

  View view_{*this};
};

/// A space that a description defines.
struct TDMAllocSpace final : TDMSpace {
  TDMAllocSpace(const TDMFileSpace &record, TDMCore &core, const tdm::ArgumentScope &scope);

  void check_mappings() const override;
  void resolve_mappings(TDMCore &core, const tdm::BusesInReach &buses,
                        const TDMFileSpace &record) override;

private:
  void read_pages(const TDMFileSpace &record, const tdm::ArgumentScope &scope);
  void create_definitions(const TDMFileSpace &record, TDMCore &core,
                          const tdm::ArgumentScope &scope);
  void create_layouts(const TDMFileSpace &record, TDMCore &core, const tdm::ArgumentScope &scope);
  void resolve_mapping(TDMMapping &mapping, const TDMFileMapping &record, TDMCore &core,
                       const tdm::BusesInReach &buses);
};

/// The placeholder for what isn't allocated; every core that isn't imported gets one.
struct TDMVoidSpace final : TDMSpace {
  TDMVoidSpace(tdm::Text space_name, int32_t space_id, int32_t mau);

  void check_mappings() const override {}
  void resolve_mappings(TDMCore &, const tdm::BusesInReach &, const TDMFileSpace &) override {}
};

/// A space that stands for several at once, reaching each memory through one of them.
struct TDMCloneSpace final : TDMSpace {
  TDMCloneSpace(tdm::ObjectList<TDMSpace *> spaces, tdm::Text core, tdm::Text processor,
                int32_t space_id, const TDMSourceLocation &place);

  void check_mappings() const override {}
  void resolve_mappings(TDMCore &, const tdm::BusesInReach &, const TDMFileSpace &) override {}

  tdm::ObjectList<TDMSpace *> members;

private:
  void connect();
  void add_member_mapping(const Interval &span, TDMSpace &member);

  tdm::Text owned_core_name_;
  tdm::Text owned_processor_name_;
};
