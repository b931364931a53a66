#include "overlaps.h"

#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "format.h"
#include "object_text.h"

namespace tool {

namespace {

constexpr size_t most_overlaps = 10;

/// One of two mappings, as what it belongs to is known.
struct Side {
  const tdm_mapping *mapping;
  std::string owner; ///< "memory chip:flash"
};

/// Both places of each overlap, as long as there aren't too many.
class Notes {
public:
  explicit Notes(const FileNames &names) : names_(names) {}

  void add(const Side &first, const Side &second, const tdm_interval &range,
           const std::string &source, int64_t bits)
  {
    if (++count_ > most_overlaps) return;
    add(first.mapping, first.owner + " takes " + span_text(range) + " of " + source + " " +
                           unit_text(range.low.mau));
    add(second.mapping, "and so does " + second.owner + ": " + human_size(bits, 1) + " overlap");
  }

  std::vector<Finding> finish()
  {
    if (count_ > most_overlaps) {
      Finding rest;
      rest.severity = "note";
      rest.text = "there are " + counted(count_ - most_overlaps, "more overlap");
      notes_.push_back(std::move(rest));
    }
    return std::move(notes_);
  }

private:
  void add(const tdm_mapping *mapping, std::string text)
  {
    Finding note;
    note.severity = "note";
    note.text = std::move(text);
    const auto keys =
        take_elements<const char *>(tdm_inspect_position_keys(TDM_OBJECT_MAPPING, mapping));
    tdm_srcpos position{};
    if (!keys.empty() &&
        tdm_inspect_position(TDM_OBJECT_MAPPING, mapping, keys.front(), &position) != 0)
      note.place = {text_of(position.file), names_.shown(text_of(position.file)), position.line,
                    position.column};
    note.included_from = include_chain_of(note.place, names_);
    notes_.push_back(std::move(note));
  }

  const FileNames &names_;
  std::vector<Finding> notes_;
  size_t count_ = 0;
};

void add_mappings(const tdm_spec *spec, Notes &notes)
{
  for (const auto &overlap :
       take_elements<tdm_inspect_mapping_overlap>(tdm_inspect_spec_mapping_overlaps(spec)))
    notes.add({overlap.first, mapping_text(overlap.first)},
              {overlap.second, mapping_text(overlap.second)}, overlap.range,
              "space " + text_of(tdm_space_get_full_name(overlap.space)), overlap.bits);
}

void add_memories(const tdm_spec *spec, Notes &notes)
{
  const auto side = [](const tdm_mapping *mapping, const tdm_memory *memory) {
    return Side{mapping, "memory " + text_of(tdm_memory_get_full_name(memory))};
  };
  for (const auto &overlap : take_elements<tdm_inspect_overlap>(tdm_inspect_spec_overlaps(spec)))
    notes.add(side(overlap.first_mapping, overlap.first),
              side(overlap.second_mapping, overlap.second), overlap.range,
              "bus " + text_of(tdm_bus_get_full_name(tdm_mapsource_get_bus(overlap.source))),
              overlap.bits);
}

} // namespace

std::vector<Finding> overlap_notes(const Session &session)
{
  Notes notes(session.names());
  add_mappings(session.spec(), notes);
  add_memories(session.spec(), notes);
  return notes.finish();
}

} // namespace tool
