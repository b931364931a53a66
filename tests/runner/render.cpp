#include "render.h"

#include <cstdio>
#include <map>

namespace cases {

namespace {

/// Collects ` key=value` for the values that deviate from what a definition leaves out.
class Line {
public:
  explicit Line(std::string begin) : text_(std::move(begin)) {}

  Line &add(const char *key, const std::string &value)
  {
    text_ += std::string(" ") + key + "=" + value;
    return *this;
  }
  Line &number(const char *key, int64_t value, int64_t silent)
  {
    return value == silent ? *this : add(key, std::to_string(value));
  }
  Line &flag(const char *key, int value)
  {
    if (value == 1) text_ += std::string(" ") + key;
    // A boolean is 1 or 0 and nothing else.
    else if (value != 0)
      add(key, std::to_string(value));
    return *this;
  }
  Line &text(const char *key, const char *value)
  {
    return value == nullptr ? *this : add(key, '"' + std::string(value) + '"');
  }
  Line &space(const char *key, tdm_space *value)
  {
    return value == nullptr ? *this : add(key, name_of(value));
  }
  Line &at(const tdm_source_location *location)
  {
    if (location == nullptr) return add("at", "nowhere");
    return add("at", std::string(tdm_source_location_get_filename(location)) + " " +
                         std::to_string(tdm_source_location_get_line_number(location)) + "/" +
                         std::to_string(tdm_source_location_get_column_number(location)));
  }
  /// The parts of a full name as their own getters tell them, if they tell something else.
  Line &parts(const char *full, const char *processor, const char *core, const char *name)
  {
    std::string composed;
    if (processor != nullptr) composed += std::string(processor) + ":";
    if (core != nullptr) composed += std::string(core) + ":";
    composed += name;
    return composed == full ? *this : add("parts", composed);
  }
  [[nodiscard]] const std::string &str() const { return text_; }

private:
  std::string text_;
};

bool is_whole(const tdm_interval &interval)
{
  return interval.width == 1 && interval.bits == 1 && interval.priority == 0x10000 &&
         interval.exec_priority == 0x10000;
}

void render_memory(const char *indent, const tdm_memory *memory, Lines &out)
{
  static const char *const types[] = {"none", "ram", "rom", "nvram", "blockram"};
  const char *full = tdm_memory_get_full_name(memory);
  Line line(std::string(indent) + "memory " + full);
  line.parts(full, tdm_memory_get_processor_name(memory), nullptr, tdm_memory_get_name(memory));
  line.number("mau", tdm_memory_get_mausize(memory), 0);
  line.add("size", hex(tdm_memory_get_size(memory)));
  const int type = tdm_memory_get_type(memory);
  line.add("type", type >= 0 && type <= 4 ? types[type] : std::to_string(type));
  line.flag("reserved", tdm_memory_is_reserved(memory));
  line.flag("fill", tdm_memory_get_fillspec(memory) != nullptr);
  line.text("write_mode", tdm_memory_get_write_mode(memory));
  line.number("setuptime", tdm_memory_get_setuptime(memory), 0);
  line.number("holdtime", tdm_memory_get_holdtime(memory), 0);
  line.number("cycles", tdm_memory_get_cycles(memory), 0);
  line.number("area", tdm_memory_get_area(memory), 0);
  line.number("r", tdm_memory_get_read_ports(memory), 0);
  line.number("w", tdm_memory_get_write_ports(memory), 0);
  line.number("rw", tdm_memory_get_readwrite_ports(memory), 0);
  tdm_interval range;
  tdm_memory_get_addressrange(memory, &range);
  const tdm_interval expected = {
      {0, 0, tdm_memory_get_mausize(memory), -1},
      {tdm_memory_get_size(memory), 0, tdm_memory_get_mausize(memory), -1},
      1,
      1,
      0x10000,
      0x10000};
  if (!is_whole(range) || render(range) != render(expected)) line.add("range", render(range));
  out.push_back(line.at(tdm_memory_get_source_location(memory)).str());
}

void render_space(const tdm_space *space, Lines &out)
{
  const char *full = tdm_space_get_full_name(space);
  Line line(std::string("    space ") + full);
  line.parts(full, tdm_space_get_processor_name(space), tdm_space_get_core_name(space),
             tdm_space_get_name(space));
  line.number("id", tdm_space_get_id(space), -1);
  line.number("mau", tdm_space_get_mausize(space), 0);
  line.number("align", tdm_space_get_alignment(space), 0);
  line.number("page_size", tdm_space_get_pagesize(space), 0);
  for (const tdm_range *range : take<tdm_range *>(tdm_space_get_page_ranges(space))) {
    tdm_addressvalue start;
    tdm_range_get_start_address(range, &start);
    line.add("page", render(start) + "+" + hex(tdm_range_get_size(range)));
  }
  line.flag("restrict", tdm_space_get_page_restrict_sections(space));
  line.flag("high_to_low", tdm_space_get_locate_direction(space));
  line.flag("start_address", tdm_space_get_start_address(space) != nullptr);
  line.space("literals", tdm_space_get_address_literal_space(space));
  tdm_interval valid;
  tdm_space_get_valid_interval(space, &valid);
  out.push_back(line.add("valid", render(valid)).str());
}

void render_core(const tdm_core *core, Lines &out)
{
  const char *full = tdm_core_get_full_name(core);
  Line line(std::string("  core ") + full);
  line.parts(full, tdm_core_get_processor_name(core), nullptr, tdm_core_get_name(core));
  line.add("arch", tdm_core_get_arch_name(core));
  std::string orders;
  for (const int32_t order : take<int32_t>(tdm_core_get_endianness(core)))
    orders += (orders.empty() ? "" : ",") + std::string(tdm_endianness_to_string(order));
  if (!orders.empty()) line.add("endianness", orders);
  line.flag("start_address", tdm_core_get_start_address(core) != nullptr);
  line.space("start_space", tdm_core_get_start_address_space(core));
  line.space("copytable_space", tdm_core_get_copytable_space(core));
  out.push_back(line.at(tdm_core_get_source_location(core)).str());
  for (const tdm_space *space : take<tdm_space *>(tdm_core_get_spaces(core)))
    render_space(space, out);
}

std::string render_bus(const tdm_bus *bus)
{
  const char *full = tdm_bus_get_full_name(bus);
  Line line(std::string("bus ") + full);
  line.parts(full, tdm_bus_get_processor_name(bus), tdm_bus_get_core_name(bus),
             tdm_bus_get_name(bus));
  line.number("mau", tdm_bus_get_mausize(bus), 0).number("width", tdm_bus_get_width(bus), 0);
  line.number("address_width", tdm_bus_get_address_width(bus), -1);
  line.flag("wishbone", tdm_bus_get_wishbone(bus));
  return line.at(tdm_bus_get_source_location(bus)).str();
}

using Buses = std::map<std::string, const tdm_bus *>;

/// Buses come only as results of translation: those behind the spaces and before the memories.
void collect_buses(const tdm_memory *memory, Buses &buses)
{
  tdm_interval range;
  tdm_memory_get_addressrange(memory, &range);
  tdm_arr *results = nullptr;
  tdm_memory_map_interval_backward_to_bus(memory, &range, &results);
  for (const auto &result : take<tdm_map_interval_result>(results))
    if (auto *bus = tdm_mapsource_get_bus(static_cast<tdm_mapsource *>(result.object)))
      buses.emplace(name_of(bus), bus);
}

void collect_buses(const tdm_space *space, Buses &buses)
{
  tdm_interval valid;
  tdm_space_get_valid_interval(space, &valid);
  tdm_arr *results = nullptr;
  tdm_space_map_interval_forward(space, &valid, &results);
  for (const auto &result : take<tdm_map_interval_result>(results))
    if (auto *bus = tdm_mapdestination_get_bus(static_cast<tdm_mapdestination *>(result.object)))
      buses.emplace(name_of(bus), bus);
}

} // namespace

std::string hex(uint64_t value)
{
  char text[32];
  std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(value));
  return text;
}

std::string hex(int64_t value)
{
  const auto bits = static_cast<uint64_t>(value);
  return value < 0 ? "-" + hex(0 - bits) : hex(bits);
}

std::string render(const tdm_addressvalue &address)
{
  std::string text = hex(address.value);
  if (address.bits != 0) text += "." + std::to_string(address.bits);
  if (address.bank != -1) text += "@" + std::to_string(address.bank);
  return text + "/" + std::to_string(address.mau);
}

std::string render(const tdm_interval &interval)
{
  std::string text = "[" + render(interval.low) + "," + render(interval.high) + ")";
  if (interval.width != 1 || interval.bits != 1)
    text += " mask=" + std::to_string(interval.width) + "/" + hex(interval.bits);
  if (interval.priority != 0x10000) text += " priority=" + hex(int64_t{interval.priority});
  if (interval.exec_priority != 0x10000) text += " exec=" + hex(int64_t{interval.exec_priority});
  return text;
}

void render_model(const tdm_spec *spec, Lines &out)
{
  Buses buses;
  for (const tdm_processor *processor : take<tdm_processor *>(tdm_spec_get_processors(spec))) {
    Line line(std::string("processor ") + tdm_processor_get_name(processor));
    line.add("derivative", tdm_processor_get_derivative_name(processor));
    out.push_back(line.at(tdm_processor_get_source_location(processor)).str());
    for (const tdm_core *core : take<tdm_core *>(tdm_processor_get_cores(processor))) {
      render_core(core, out);
      for (const tdm_space *space : take<tdm_space *>(tdm_core_get_spaces(core)))
        collect_buses(space, buses);
    }
    for (const tdm_memory *memory : take<tdm_memory *>(tdm_processor_get_memories(processor))) {
      render_memory("  ", memory, out);
      collect_buses(memory, buses);
    }
  }
  for (const tdm_memory *memory : take<tdm_memory *>(tdm_spec_get_memories(spec))) {
    render_memory("", memory, out);
    collect_buses(memory, buses);
  }
  for (const auto &[name, bus] : buses) out.push_back(render_bus(bus));
  for (const char *file : take<const char *>(tdm_spec_get_file_dependencies(spec)))
    out.push_back(std::string("read ") + file);
}

std::string name_of(tdm_bus *bus)
{
  return tdm_bus_get_full_name(bus);
}
std::string name_of(tdm_space *space)
{
  return tdm_space_get_full_name(space);
}
std::string name_of(tdm_memory *memory)
{
  return tdm_memory_get_full_name(memory);
}

std::string name_of(tdm_mapsource *source)
{
  tdm_bus *bus = tdm_mapsource_get_bus(source);
  tdm_space *space = tdm_mapsource_get_space(source);
  if ((bus != nullptr) != (tdm_mapsource_is_bus(source) == 1) ||
      (space != nullptr) != (tdm_mapsource_is_space(source) == 1))
    return "a source whose kind is in doubt";
  return bus != nullptr ? "bus " + name_of(bus) : "space " + name_of(space);
}

std::string name_of(tdm_mapdestination *destination)
{
  tdm_memory *memory = tdm_mapdestination_get_memory(destination);
  tdm_bus *bus = tdm_mapdestination_get_bus(destination);
  tdm_space *space = tdm_mapdestination_get_space(destination);
  if ((memory != nullptr) != (tdm_mapdestination_is_memory(destination) == 1) ||
      (bus != nullptr) != (tdm_mapdestination_is_bus(destination) == 1) ||
      (space != nullptr) != (tdm_mapdestination_is_space(destination) == 1))
    return "a destination whose kind is in doubt";
  if (memory != nullptr) return "memory " + name_of(memory);
  return bus != nullptr ? "bus " + name_of(bus) : "space " + name_of(space);
}

} // namespace cases
