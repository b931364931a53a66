// Memories first, then mappings, then expressions: the order in which faults are found.
#include "layout/group_location_builder.h"

#include "common/failures.h"
#include "common/make_object.h"
#include "expressions/translate.h"
#include "language/layout_records.h"

namespace tdm {

namespace {

class LocationBuilder {
public:
  LocationBuilder(const TDMFileGroupLocation &record, const LayoutContext &context,
                  const TDMSourceLocation &group_place)
      : record_(record), context_(context), group_place_(group_place),
        location_(make_object<TDMGroupLocation>(context.space))
  {
    location_->sourceLocations = record.sourceLocations;
    location_->group_place = group_place;
  }

  std::unique_ptr<TDMGroupLocation> build()
  {
    require_some_place();
    find_memories();
    find_mappings();
    translate_expressions();
    return std::move(location_);
  }

private:
  void require_some_place() const
  {
    if (record_.address == nullptr && !record_.memoryName && record_.ranges.empty())
      throw new TDMSyntaxException(place("address"), "group location without address or range");
  }

  void find_memories()
  {
    if (record_.memoryName)
      location_->memory = find_memory(
          context_, *record_.memoryName,
          "memory reference for a run-time or load-time address of a group", memory_place());
    for (const auto &range : record_.ranges) {
      TDMGroupLocation::Range &made = location_->ranges.emplace_back();
      if (range->memoryName)
        made.memory =
            find_memory(context_, *range->memoryName,
                        "memory reference for a run-time or load-time address range of a group",
                        memory_place());
    }
  }

  void find_mappings()
  {
    if (record_.mappingName)
      location_->mapping = find_mapping(*record_.mappingName, *location_->memory.object);
    for (size_t i = 0; i < record_.ranges.size(); ++i)
      if (record_.ranges[i]->mappingName)
        location_->ranges[i].mapping =
            find_mapping(*record_.ranges[i]->mappingName, *location_->ranges[i].memory.object);
  }

  const TDMMapping *find_mapping(Text name, const TDMMapDestination &memory) const
  {
    if (const TDMMapping *mapping = context_.memories->find_mapping(memory, name.str()))
      return mapping;
    std::string memory_name;
    memory.get_full_name(memory_name);
    throw new TDMSyntaxException(memory_place(),
                                 "could not find mapping " + name + " in memory " + memory_name);
  }

  void translate_expressions()
  {
    location_->address = translate(record_.address, "address");
    for (size_t i = 0; i < record_.ranges.size(); ++i) {
      location_->ranges[i].low = translate(record_.ranges[i]->low, "range");
      location_->ranges[i].high = translate(record_.ranges[i]->high, "range");
    }
  }

  std::unique_ptr<TDMExpression> translate(const ExpressionPtr &expression, LocationKey key) const
  {
    return translate_expression(expression.get(), context_.scope, [&] { return place(key); });
  }

  TDMSourceLocation place(LocationKey key) const
  {
    const TDMSourceLocation *found = record_.find_location(key);
    return found != nullptr ? *found : group_place_;
  }

  TDMSourceLocation memory_place() const
  {
    const TDMSourceLocation *found = record_.find_location("memoryReference");
    return found != nullptr ? *found : place("range");
  }

  const TDMFileGroupLocation &record_;
  const LayoutContext &context_;
  const TDMSourceLocation &group_place_;
  std::unique_ptr<TDMGroupLocation> location_;
};

} // namespace

std::unique_ptr<TDMGroupLocation> build_group_location(const TDMFileGroupLocation &record,
                                                       const LayoutContext &context,
                                                       const TDMSourceLocation &group_place)
{
  return LocationBuilder(record, context, group_place).build();
}

} // namespace tdm
