// Finds the processor and the core of the space, and translates in their scope.
#include "model/space_expression.h"

#include "common/failures.h"
#include "language/expression_stream.h"
#include "language/parse_driver.h"
#include "model/section_items.h"
#include "model/spec.h"

namespace tdm {

namespace {

SectionTargets::Target target_of(const TDMSpec &spec, const TDMSpace &wanted)
{
  for (const auto &processor : spec.processors)
    for (const auto &core : processor->cores)
      for (const auto &space : core->spaces)
        if (space.get() == &wanted) return {processor.get(), core.get(), space.get()};
  throw new TDMFileException("the space is none of this description");
}

class TargetUnits final : public Units {
public:
  TargetUnits(const SectionTargets &targets, const SectionTargets::Target &target)
      : targets_(targets), target_(target)
  {
  }

  [[nodiscard]] std::int32_t space_mau() const override { return target_.space->mau_size; }
  [[nodiscard]] std::int32_t memory_mau(const std::string &name) const override
  {
    const LayoutMemory memory = targets_.find_memory(*target_.processor, name);
    return memory.object != nullptr ? memory.object->get_mau_size() : 0;
  }

private:
  const SectionTargets &targets_;
  const SectionTargets::Target &target_;
};

} // namespace

SpaceExpression expression_in_space(TDMSpec &spec, const TDMSpace &space, std::string_view text)
{
  const SectionTargets::Target target = target_of(spec, space);
  const ExpressionPtr record = parse_expression(text);
  const TDMSourceLocation start{ExpressionStream::name, 1, 1};
  const SectionTargets targets(spec);
  return {SectionItems(targets).translate(*record, target, target.processor->parameters, start),
          quantity_of(*record, TargetUnits(targets, target))};
}

} // namespace tdm
