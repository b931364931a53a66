// Finds what section layouts and setups, and the references in them, name: a processor, a core and
// a space, each of which may be left out where there is only one.
//
// A layout at file level can name all three. One in a derivative lies in the processor that is
// being instantiated, and the name of a processor isn't looked at there. Several space names stand
// for the one space that stands for all of these, which is made when it is first named.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/source_location.h"
#include "common/text.h"
#include "layout/layout_space.h"
#include "model/clone_space_registry.h"

class TDMFileCopySubTableSpace;
class TDMFileSectionLayout;
class TDMFileSectionSetup;
struct TDMProcessor;
struct TDMSpace;
struct TDMSpec;

namespace tdm {

struct TargetWords;

class SectionTargets {
public:
  struct Target {
    TDMProcessor *processor;
    TDMCore *core;
    TDMSpace *space;
  };

  /// Of the file level.
  explicit SectionTargets(TDMSpec &spec);
  /// Of a derivative.
  SectionTargets(TDMCloneSpaceRegistry &registry, TDMProcessor &processor);

  /// What is missing or unknown is refused.
  [[nodiscard]] Target find(const TDMFileSectionLayout &record);
  [[nodiscard]] Target find(const TDMFileSectionSetup &record);

  /// The space of a reference, or null if there is none of that name. A processor or core that may
  /// not be named here, is missing, or is unknown, is refused.
  [[nodiscard]] TDMSpace *resolve(const TDMFileCopySubTableSpace &reference);

  [[nodiscard]] bool at_file_level() const { return spec_ != nullptr; }

  /// A memory that a layout of the processor names: of the processor, by name or full name, and at
  /// file level also a global one. The object is null if there is none.
  [[nodiscard]] LayoutMemory find_memory(const TDMProcessor &processor,
                                         std::string_view name) const;

  /// The first mapping of that name of a memory, or null.
  [[nodiscard]] const TDMMapping *find_mapping(const TDMMapDestination &memory,
                                               std::string_view name);

private:
  /// What the spaces of a processor can be called by in a group, beside their plain names.
  using Members = std::unordered_map<std::string, TDMSpace *>;
  /// The mappings of a memory that have names.
  using NamedMappings = std::unordered_map<std::string_view, const TDMMapping *>;

  template <class Record> Target find(const Record &record, const TargetWords &words);
  TDMProcessor &find_processor(const std::optional<Text> &name, const TargetWords &words,
                               const TDMSourceLocation &place) const;
  /// `place` is that of the name, `asked` that of the definition.
  TDMSpace *find_space(TDMProcessor &processor, TDMCore &core, std::string_view name,
                       const TDMSourceLocation &place, const TDMSourceLocation &asked);
  TDMSpace *clone_space(TDMProcessor &processor, TDMCore &core, std::string_view names,
                        const TDMSourceLocation &place, const TDMSourceLocation &asked);
  TDMSpace *find_member(const TDMProcessor &processor, const TDMCore &core,
                        const std::string &member);

  TDMProcessor &referenced_processor(const TDMFileCopySubTableSpace &reference) const;

  TDMCloneSpaceRegistry &registry_;
  TDMSpec *spec_ = nullptr;           ///< at file level
  TDMProcessor *processor_ = nullptr; ///< in a derivative
  std::unordered_map<const TDMProcessor *, Members> members_;
  std::unordered_map<const TDMMapDestination *, NamedMappings> mappings_; ///< of memories asked for
};

} // namespace tdm
