// What instantiation reads: the architectures and derivatives of a description, found by name, and
// the helpers that walk their chains of bases.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "common/block_pool.h"
#include "expressions/argument_scope.h"
#include "language/records.h"

struct TDMSpec;

namespace tdm {

/// The templates of one description. Views the records, which outlive it.
class Templates {
public:
  Templates(const tdm::RecordList<std::unique_ptr<TDMFileArchitecture>> &architectures,
            const tdm::RecordList<std::unique_ptr<TDMFileDerivative>> &derivatives);

  /// The first definition of exactly that name, or null.
  [[nodiscard]] const TDMFileArchitecture *architecture(std::string_view name) const;
  [[nodiscard]] const TDMFileDerivative *derivative(std::string_view name) const;

private:
  std::unordered_map<std::string_view, const TDMFileArchitecture *> architectures_;
  std::unordered_map<std::string_view, const TDMFileDerivative *> derivatives_;
};

/// One template of a chain, bound to its arguments. The first pass over a chain makes the levels;
/// the second goes over them again.
template <typename Record> struct ChainLevel {
  const Record *record;
  ArgumentScope scope;
};

/// The levels stay where they are as the chain grows.
template <typename Record>
using Chain = std::list<ChainLevel<Record>, PoolAllocator<ChainLevel<Record>>>;

/// Names as a report lists them: sorted, `{ a b c }`.
[[nodiscard]] std::string listed(std::vector<std::string_view> names);

/// The names of the templates of a chain.
template <typename Record> [[nodiscard]] std::string listed_names(const Chain<Record> &chain)
{
  std::vector<std::string_view> names;
  names.reserve(chain.size());
  for (const ChainLevel<Record> &level : chain) names.push_back(*level.record->name);
  return listed(std::move(names));
}

} // namespace tdm
