// What a client keeps of a spec that has ended: copies of expressions and of places, and names.
#include "client.h"

namespace {

struct Kept {
  std::vector<std::unique_ptr<TDMExpression>> values;
  SourceLocations places;
  tdm::Text name;
};

/// Takes copies out of a spec that is no more when they are given.
Kept kept_of(const tdm_arr &names)
{
  Kept kept;
  tdm_spec *spec = tdm_parse_file(&names, nullptr);
  const tdm_processor *processor = tdm_spec_get_processor(spec, "cpu1");
  TDMFillSpec *fill = tdm_memory_get_fillspec(tdm_processor_get_memory(processor, "cpu1:rom1"));
  for (const auto &value : fill->values) kept.values.push_back(value->clone());
  tdm_walk_callbacks callbacks{};
  callbacks.group_begin = [](tdm_group *group, tdm_statement_env *, tdm_statement_env *, void *to) {
    static_cast<Kept *>(to)->places = group->sourceLocations;
    static_cast<Kept *>(to)->name = *group->name;
  };
  const tdm_expression_callbacks yes{[](const char *, void *) { return 1; }, nullptr};
  tdm_core *core = tdm_processor_get_core(processor, "cor1");
  tdm_space_walk(tdm_core_get_space_by_name(core, "lin"), &callbacks, &kept, &yes, nullptr);
  tdm_spec_free(spec);
  return kept;
}

} // namespace

void test_keeping(const tdm_arr &names)
{
  Kept kept = kept_of(names);
  Linker linker;
  CHECK(kept.values.size() == 5 && kept.values[0]->value(&linker) == 0x1002);
  CHECK(kept.values[1]->clone()->value(&linker) == 72);
  CHECK(kept.name == "g1");
  CHECK(kept.places.entries().size() > 1 && kept.places.find("runAddress")->line == 20);
  // A list that is shared until somebody stores into it.
  TDMSelectionStatement own(kept.places, "a*");
  own.sourceLocations.store("sectionName", {"own", 7, 1});
  CHECK(own.location("runAddress")->line == 20 && own.location("sectionName")->line == 7);
  CHECK(kept.places.find("sectionName") == nullptr);
}
