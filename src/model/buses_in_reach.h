// The buses that the `map` entries of a definition may name, found by full name.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/bus.h"

namespace tdm {

/// Buses in the order of search; of several with one full name the first one counts.
class BusesInReach {
public:
  void add(const std::vector<std::unique_ptr<TDMBus>> &buses)
  {
    for (const auto &bus : buses) by_full_name_.emplace(bus->full_name(), bus.get());
  }

  [[nodiscard]] TDMBus *find(const std::string &full_name) const
  {
    const auto found = by_full_name_.find(full_name);
    return found != by_full_name_.end() ? found->second : nullptr;
  }

private:
  std::unordered_map<std::string, TDMBus *, std::hash<std::string>, std::equal_to<>,
                     PoolAllocator<std::pair<const std::string, TDMBus *>>>
      by_full_name_;
};

/// `<processor>:<core>:<name>`, each prefix and its colon left out where it is null.
[[nodiscard]] inline std::string prefixed_name(const std::string *processor,
                                               const std::string *core, const std::string &name)
{
  std::string text;
  text.reserve((processor != nullptr ? processor->size() + 1 : 0) +
               (core != nullptr ? core->size() + 1 : 0) + name.size());
  if (processor != nullptr) text.append(*processor).push_back(':');
  if (core != nullptr) text.append(*core).push_back(':');
  return text.append(name);
}

} // namespace tdm
