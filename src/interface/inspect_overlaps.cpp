// The parse that hands out what fails some checks, and the overlaps that made it fail.
#include "interface/guard.h"
#include "interface/input.h"
#include "interface/tdm_inspect_overlap.h"
#include "interface/values.h"
#include "model/overlaps.h"
#include "model/spec.h"

using tdm::guarded;
using tdm::guarded_array;

tdm_spec *tdm_inspect_parse_file(const tdm_arr *files, const tdm_arr *include_dirs)
{
  return guarded([&] {
    return std::make_unique<TDMSpec>(tdm::begin_input(files, include_dirs),
                                     TDMSpec::Checks::kept_for_reading)
        .release();
  });
}

const char *tdm_inspect_spec_check_failure(const tdm_spec *spec)
{
  return guarded(
      [&] { return spec->check_failure ? tdm::text_result(*spec->check_failure) : nullptr; });
}

tdm_arr *tdm_inspect_spec_overlaps(const tdm_spec *spec)
{
  return guarded_array<tdm_inspect_overlap>([&] {
    return tdm::array_of(tdm::find_overlaps(*spec), [](const tdm::Overlap &overlap) {
      return tdm_inspect_overlap{
          overlap.source,        tdm::handle(overlap.first), tdm::handle(overlap.second),
          overlap.first_mapping, overlap.second_mapping,     overlap.range.to_record(),
          overlap.bits};
    });
  });
}

tdm_arr *tdm_inspect_spec_mapping_overlaps(const tdm_spec *spec)
{
  return guarded_array<tdm_inspect_mapping_overlap>([&] {
    return tdm::array_of(tdm::find_mapping_overlaps(*spec), [](const tdm::MappingOverlap &overlap) {
      return tdm_inspect_mapping_overlap{overlap.space, overlap.first, overlap.second,
                                         overlap.range.to_record(), overlap.bits};
    });
  });
}
