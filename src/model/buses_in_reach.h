// The buses that the `map` entries of a definition may name, and names that are made of parts.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "common/block_pool.h"
#include "common/name_table.h"
#include "mapping/inline_stack.h"
#include "model/bus.h"

namespace tdm {

/// A name with perhaps one more before it and a colon between them.
struct QualifiedName {
  const Text *qualifier; ///< null for a plain name
  std::string_view name;
};

/// The same as text.
struct QualifiedText {
  explicit QualifiedText(std::string_view text) : name(text)
  {
    const size_t colon = text.find(':');
    is_qualified = colon != std::string_view::npos;
    if (!is_qualified) return;
    qualifier = text.substr(0, colon);
    name = text.substr(colon + 1);
  }

  bool is_qualified;
  std::string_view qualifier;
  std::string_view name;
};

[[nodiscard]] inline uint32_t name_hash(const QualifiedName &name)
{
  const uint32_t hash = name_hash(name.name);
  return name.qualifier != nullptr ? hash + name_hash(*name.qualifier) * 31 : hash;
}
[[nodiscard]] inline uint32_t name_hash(const QualifiedText &text)
{
  const uint32_t hash = name_hash(text.name);
  return text.is_qualified ? hash + name_hash(text.qualifier) * 31 : hash;
}
[[nodiscard]] inline bool same_name(const QualifiedName &a, const QualifiedText &b)
{
  return (a.qualifier != nullptr) == b.is_qualified && same_name(a.name, b.name) &&
         (!b.is_qualified || same_name(*a.qualifier, b.qualifier));
}
[[nodiscard]] inline bool same_name(const QualifiedName &a, const QualifiedName &b)
{
  return (a.qualifier != nullptr) == (b.qualifier != nullptr) && same_name(a.name, b.name) &&
         (a.qualifier == b.qualifier || same_name(*a.qualifier, *b.qualifier));
}

/// Buses in the order of search, by the names that entries give them; of several with one name the
/// first one counts.
class BusesInReach {
public:
  /// Adds buses that are named as they are or, with the name of their core or processor before
  /// theirs, from farther off.
  void add(const PooledVector<std::unique_ptr<TDMBus>> &buses, const Text *qualifier = nullptr)
  {
    for (const auto &bus : buses) {
      buses_.push_back({{qualifier, bus->name}, bus.get()});
      places_.append(NameAt{buses_});
    }
  }

  [[nodiscard]] TDMBus *find(std::string_view name) const
  {
    const uint32_t place = places_.find(QualifiedText(name), NameAt{buses_});
    return place != NameTable::none ? buses_[place].bus : nullptr;
  }

private:
  struct Entry {
    QualifiedName name;
    TDMBus *bus;
  };
  struct NameAt {
    const InlineStack<Entry, 8> &entries;

    const QualifiedName &operator()(uint32_t place) const { return entries[place].name; }
  };

  InlineStack<Entry, 8> buses_;
  NameTable places_;
};

/// `<processor>:<core>:<name>`, each prefix and its colon left out where it is null.
[[nodiscard]] inline std::string prefixed_name(const Text *processor, const Text *core,
                                               std::string_view name)
{
  std::string text;
  text.reserve((processor != nullptr ? processor->size() + 1 : 0) +
               (core != nullptr ? core->size() + 1 : 0) + name.size());
  if (processor != nullptr) text.append(*processor).push_back(':');
  if (core != nullptr) text.append(*core).push_back(':');
  return text.append(name);
}

/// Whether the text is `<processor>:<core>:<name>`.
[[nodiscard]] inline bool is_prefixed_name(std::string_view text, std::string_view processor,
                                           std::string_view core, std::string_view name)
{
  const size_t core_begin = processor.size() + 1;
  const size_t name_begin = core_begin + core.size() + 1;
  return text.size() == name_begin + name.size() && text.starts_with(processor) &&
         text[core_begin - 1] == ':' && text.substr(core_begin, core.size()) == core &&
         text[name_begin - 1] == ':' && text.substr(name_begin) == name;
}

} // namespace tdm
