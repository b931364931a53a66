// A processor: one chip as a description instantiates it, with its cores, buses and memories.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/block_pool.h"
#include "common/tdm_object.h"
#include "common/text.h"
#include "expressions/argument_scope.h"
#include "model/clone_space_registry.h"
#include "model/core.h"
#include "model/memory.h"
#include "model/name_index.h"
#include "preprocessor/known_names.h"

class TDMFileCPU;
class TDMFileDerivative;
class TDMFileExpression;

namespace tdm {
class CheckRunner;
class Templates;
} // namespace tdm

struct TDMProcessor : TDMObject {
  /// From a `processor` definition. Its layouts find the spaces that stand for several in the
  /// registry. The runner is for the checks of its cores.
  TDMProcessor(const TDMFileCPU &record, const tdm::Templates &templates,
               TDMCloneSpaceRegistry &registry, const tdm::CheckRunner &runner);
  /// The default processor of a derivative, with no arguments.
  TDMProcessor(const TDMFileDerivative &derivative, const tdm::Templates &templates,
               TDMCloneSpaceRegistry &registry, const tdm::CheckRunner &runner);
  ~TDMProcessor();
  TDMProcessor(const TDMProcessor &) = delete;
  TDMProcessor &operator=(const TDMProcessor &) = delete;

  /// The first core of that name, or null.
  [[nodiscard]] TDMCore *find_core(std::string_view core_name) const
  {
    return core_index_.find(core_name);
  }
  /// The first memory of that full name, `<processor>:<memory>`, or null.
  [[nodiscard]] TDMMemory *find_memory(std::string_view full_name) const;
  /// The first memory of that plain name, or null.
  [[nodiscard]] TDMMemory *find_memory_by_plain_name(std::string_view plain_name) const
  {
    return memory_index_.find(plain_name);
  }

  /// Refuses cores, buses and memories of one full name.
  void check_names() const;

  tdm::Text name;
  mutable tdm::KnownNames known_names;
  tdm::Text derivative_name;
  tdm::PooledVector<std::unique_ptr<TDMCore>> cores;
  tdm::PooledVector<std::unique_ptr<TDMBus>> buses;
  tdm::PooledVector<std::unique_ptr<TDMMemory>> memories;
  /// Of its derivative, not of the bases, with copies of what they are bound to: for expressions
  /// that a caller brings after the parse.
  tdm::ArgumentScope parameters;
  tdm::PooledVector<tdm::Text> parameter_names; ///< in the order of the definition, each once

private:
  void instantiate(const TDMFileDerivative &derivative, tdm::Arguments arguments,
                   const tdm::Templates &templates, TDMCloneSpaceRegistry &registry,
                   const tdm::CheckRunner &runner);

  tdm::NameIndex<TDMCore> core_index_{cores};
  tdm::NameIndex<TDMMemory> memory_index_{memories};
};
