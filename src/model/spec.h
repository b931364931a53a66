// The root of the model: what one parse gives. Its constructor is the whole road from the names of
// the files to a checked model.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "common/block_pool.h"
#include "model/bus.h"
#include "model/clone_space_registry.h"
#include "model/memory.h"
#include "model/name_index.h"
#include "model/processor.h"
#include "preprocessor/string_pool.h"

class TDMFileInterface;

namespace tdm {
class CheckRunner;
class Templates;
} // namespace tdm

struct TDMSpec : TDMCloneSpaceRegistry {
  /// What becomes of a spec whose names or mappings don't go together: one that fails the checks
  /// over the whole of it, or the check of the mappings of a space.
  enum class Checks { refused, kept_for_reading };

  /// Reads the files as one input. Throws the failures of the language and the model by pointer.
  explicit TDMSpec(const std::vector<std::string> &files, Checks checks = Checks::refused);

  TDMCloneSpace *find_clone_space(const std::set<std::string> &names) const override;
  TDMCloneSpace *create_clone_space(TDMCore &core,
                                    const tdm::PooledVector<std::unique_ptr<TDMCore>> &siblings,
                                    const std::set<std::string> &names,
                                    const TDMSourceLocation &place) override;
  virtual ~TDMSpec();

  TDMSpec(const TDMSpec &) = delete;
  TDMSpec &operator=(const TDMSpec &) = delete;

  /// The processor, or the global memory, of that name, or null.
  [[nodiscard]] TDMProcessor *find_processor(std::string_view name) const
  {
    return processor_index_.find(name);
  }
  [[nodiscard]] TDMMemory *find_memory(std::string_view name) const
  {
    return memory_index_.find(name);
  }

private:
  tdm::TextKeeper texts_; ///< what names are views of
  tdm::Region region_;    ///< of all blocks that the parse allocates

public:
  // In the order of destruction, last to first: processors go first.
  std::set<std::string> file_dependencies;
  std::optional<std::string> check_failure; ///< of a spec that is kept for reading all the same
  std::map<std::set<std::string>, TDMCloneSpace *> clone_spaces;
  tdm::PooledVector<std::unique_ptr<TDMBus>> buses;
  tdm::PooledVector<std::unique_ptr<TDMMemory>> memories;
  tdm::PooledVector<std::unique_ptr<TDMProcessor>> processors;

private:
  void read(const std::vector<std::string> &files, Checks checks);
  std::unique_ptr<TDMFileInterface> parse(const std::vector<std::string> &files);
  void build(TDMFileInterface &records, const tdm::CheckRunner &runner);
  void create_processors(const TDMFileInterface &records, const tdm::CheckRunner &runner);
  void create_default_processors(const TDMFileInterface &records, const tdm::Templates &templates,
                                 const tdm::CheckRunner &runner);
  void create_globals(TDMFileInterface &records);
  void add_section_items(TDMFileInterface &records);
  void check() const;
  void check_names() const;

  tdm::NameIndex<TDMProcessor> processor_index_{processors};
  tdm::NameIndex<TDMMemory> memory_index_{memories};
};
