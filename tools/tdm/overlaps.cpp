#include "overlaps.h"

#include <tdm_c/tdm_inspect.h>

#include "address.h"
#include "format.h"

namespace tool {

namespace {

constexpr size_t most_overlaps = 10;

Finding note_at(const tdm_mapping *mapping, const FileNames &names, std::string text)
{
  Finding note;
  note.severity = "note";
  note.text = std::move(text);
  const auto keys =
      take_elements<const char *>(tdm_inspect_position_keys(TDM_OBJECT_MAPPING, mapping));
  tdm_srcpos position{};
  if (!keys.empty() &&
      tdm_inspect_position(TDM_OBJECT_MAPPING, mapping, keys.front(), &position) != 0)
    note.place = {text_of(position.file), names.shown(text_of(position.file)), position.line,
                  position.column};
  return note;
}

} // namespace

std::vector<Finding> overlap_notes(const Session &session)
{
  std::vector<Finding> notes;
  const auto overlaps =
      take_elements<tdm_inspect_overlap>(tdm_inspect_spec_overlaps(session.spec()));
  for (size_t i = 0; i < overlaps.size() && i < most_overlaps; ++i) {
    const tdm_inspect_overlap &overlap = overlaps[i];
    const std::string first = text_of(tdm_memory_get_full_name(overlap.first));
    const std::string second = text_of(tdm_memory_get_full_name(overlap.second));
    const std::string bus = text_of(tdm_bus_get_full_name(tdm_mapsource_get_bus(overlap.source)));
    notes.push_back(note_at(overlap.first_mapping, session.names(),
                            "memory " + first + " takes " + span_text(overlap.range) + " of bus " +
                                bus + " (" + std::to_string(overlap.range.low.mau) + "-bit MAUs)"));
    notes.push_back(
        note_at(overlap.second_mapping, session.names(),
                "and so does memory " + second + ": " + human_size(overlap.bits, 1) + " overlap"));
  }
  if (overlaps.size() > most_overlaps) {
    Finding rest;
    rest.severity = "note";
    rest.text = "there are " + counted(overlaps.size() - most_overlaps, "more overlap");
    notes.push_back(rest);
  }
  return notes;
}

} // namespace tool
