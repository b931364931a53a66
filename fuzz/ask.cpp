// A parse, and then everything that can be asked of what came out: all getters, all walks with
// sections to select, translations of addresses and spans at the edges of every space and memory.
// One input of eight is read twice and has to give equal answers.
#include <tdm_c/tdm_inspect.h>

#include "../tests/runner/read_space.h"
#include "../tests/runner/render.h"
#include "description.h"

extern "C" void inspect_all(tdm_spec *spec);

namespace {

using cases::Lines;
using cases::take;

/// Sections that patterns may take: usual names, and the strings of the text.
std::string section_names(std::string_view text)
{
  std::string names = "sections=.text/rx,.data/rw,.text.main/x,.bss/wb,abc/r";
  for (int i = 0; i < 6; ++i) {
    const std::size_t begin = text.find('"');
    if (begin == text.npos) break;
    text.remove_prefix(begin + 1);
    const std::string_view name = text.substr(0, text.find_first_of("\"\n"));
    if (!name.empty() && name.find_first_of(",/") == name.npos)
      names += "," + std::string(name) + "/rwxisbp";
    text.remove_prefix(name.size() + (name.size() < text.size() ? 1 : 0));
  }
  return names;
}

template <class Result, class Call> void say(Lines &out, Call call)
{
  tdm_arr *results = nullptr;
  const int found = call(&results);
  fuzz::require(found == (results->count > 0 ? 1 : 0), "the result and the array agree");
  for (const Result &result : take<Result>(results)) {
    if constexpr (std::is_same_v<Result, tdm_map_interval_result>)
      out.push_back(cases::render(result.interval));
    else
      out.push_back(cases::render(result.address));
    if (result.reserved != 0) out.back() += " reserved";
  }
}

/// Positions and spans of the unit: around the ends of the whole, in banks, and off it.
template <class Ask> void at_edges(const tdm_interval &whole, int mau, Ask ask)
{
  const std::int64_t ends[] = {whole.low.value, whole.high.value, 0, 0x4000, INT64_MAX, INT64_MIN};
  for (const std::int64_t end : ends)
    for (int bank = -1; bank < (end == 0 ? 3 : 0); ++bank) {
      const auto behind = static_cast<std::int64_t>(static_cast<std::uint64_t>(end) + 5);
      tdm_interval span = {{end, 0, mau, bank}, {behind, 3, mau, bank}, 1, 1, 0x10000, 0x10000};
      ask(span);
      span.width = 16;
      span.bits = 0xFF00;
      span.low.bits = 1;
      ask(span);
    }
  ask(whole);
}

void translate(const tdm_space *space, Lines &out)
{
  tdm_interval valid;
  tdm_space_get_valid_interval(space, &valid);
  at_edges(valid, tdm_space_get_mausize(space), [&](const tdm_interval &i) {
    say<tdm_map_interval_result>(
        out, [&](auto *r) { return tdm_space_map_interval_forward(space, &i, r); });
    say<tdm_map_interval_result>(
        out, [&](auto *r) { return tdm_space_map_interval_forward_to_memory(space, &i, r); });
    say<tdm_map_address_result>(
        out, [&](auto *r) { return tdm_space_map_addressvalue_forward(space, &i.low, r); });
    say<tdm_map_address_result>(out, [&](auto *r) {
      return tdm_space_map_addressvalue_forward_to_memory(space, &i.low, r);
    });
  });
}

void translate(const tdm_memory *memory, Lines &out)
{
  tdm_interval range;
  tdm_memory_get_addressrange(memory, &range);
  at_edges(range, tdm_memory_get_mausize(memory), [&](const tdm_interval &i) {
    say<tdm_map_interval_result>(
        out, [&](auto *r) { return tdm_memory_map_interval_backward(memory, &i, r); });
    say<tdm_map_interval_result>(
        out, [&](auto *r) { return tdm_memory_map_interval_backward_to_bus(memory, &i, r); });
    say<tdm_map_interval_result>(
        out, [&](auto *r) { return tdm_memory_map_interval_backward_to_space(memory, &i, r); });
    say<tdm_map_address_result>(
        out, [&](auto *r) { return tdm_memory_map_addressvalue_backward(memory, &i.low, r); });
    say<tdm_map_address_result>(out, [&](auto *r) {
      return tdm_memory_map_addressvalue_backward_to_bus(memory, &i.low, r);
    });
    say<tdm_map_address_result>(out, [&](auto *r) {
      return tdm_memory_map_addressvalue_backward_to_space(memory, &i.low, r);
    });
  });
}

/// What stands behind the first equals signs, as expressions in the scope of the space.
void read_expressions(const tdm_spec *spec, const tdm_space *space, std::string_view text,
                      Lines &out)
{
  for (int i = 0; i < 6; ++i) {
    const std::size_t begin = text.find('=');
    if (begin == text.npos) return;
    text.remove_prefix(begin + 1);
    const std::string piece(text.substr(0, text.find_first_of(i % 2 == 0 ? ";" : ",;")));
    tdm_expression *expression = tdm_inspect_parse_expression(spec, space, piece.c_str(), nullptr);
    std::int64_t value = 0;
    if (expression == nullptr)
      out.push_back(tdm_get_last_error());
    else if (tdm_inspect_expression_evaluate(expression, nullptr, nullptr, &value) != 0)
      out.push_back(std::to_string(value));
    tdm_inspect_expression_delete(expression);
  }
}

Lines answers(std::string_view text)
{
  Lines out;
  tdm_spec *spec = fuzz::parse(text);
  if (spec != nullptr) {
    cases::render_model(spec, out);
    inspect_all(spec);
    const std::string sections = section_names(text);
    for (const tdm_processor *processor : take<tdm_processor *>(tdm_spec_get_processors(spec))) {
      for (const tdm_core *core : take<tdm_core *>(tdm_processor_get_cores(processor)))
        for (tdm_space *space : take<tdm_space *>(tdm_core_get_spaces(core))) {
          translate(space, out);
          read_expressions(spec, space, text, out);
          for (const Lines &options :
               {Lines{sections, "exists=.text,x1"}, Lines{"without_expressions"}})
            for (std::string &line : cases::read_space(space, options))
              out.push_back(std::move(line));
        }
      for (const tdm_memory *memory : take<tdm_memory *>(tdm_processor_get_memories(processor)))
        translate(memory, out);
    }
    for (const tdm_memory *memory : take<tdm_memory *>(tdm_spec_get_memories(spec)))
      translate(memory, out);
  }
  out.push_back(tdm_inspect_failure_text());
  fuzz::finish(spec);
  return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
  const std::string_view text = fuzz::text_of(data, size);
  const Lines first = answers(text);
  // What __DATE__ and __TIME__ give may change between the two.
  if (size % 8 == 0 && text.find("TIME") == text.npos && text.find("DATE") == text.npos)
    fuzz::require(answers(text) == first, "equal inputs have equal answers");
  return 0;
}
