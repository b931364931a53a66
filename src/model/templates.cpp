// Finds templates by name.
#include "model/templates.h"

#include <algorithm>

namespace tdm {

Templates::Templates(const tdm::RecordList<std::unique_ptr<TDMFileArchitecture>> &architectures,
                     const tdm::RecordList<std::unique_ptr<TDMFileDerivative>> &derivatives)
{
  for (const auto &record : architectures) architectures_.emplace(*record->name, record.get());
  for (const auto &record : derivatives) derivatives_.emplace(*record->name, record.get());
}

const TDMFileArchitecture *Templates::architecture(std::string_view name) const
{
  const auto found = architectures_.find(name);
  return found != architectures_.end() ? found->second : nullptr;
}

const TDMFileDerivative *Templates::derivative(std::string_view name) const
{
  const auto found = derivatives_.find(name);
  return found != derivatives_.end() ? found->second : nullptr;
}

std::string listed(std::vector<std::string_view> names)
{
  std::sort(names.begin(), names.end());
  std::string text = "{";
  for (const std::string_view name : names) text.append(1, ' ').append(name);
  return text + " }";
}

} // namespace tdm
