// The road of a parse, from file names to a checked model.
#include "model/spec.h"

#include <span>
#include <string_view>
#include <unordered_set>

#include "common/failures.h"
#include "common/make_object.h"
#include "language/parse_driver.h"
#include "language/records.h"
#include "mapping/interval.h"
#include "model/buses_in_reach.h"
#include "model/check_runner.h"
#include "model/default_derivative.h"
#include "model/overlap_check.h"
#include "model/section_items.h"
#include "model/templates.h"
#include "preprocessor/preprocessed_file_input_stream.h"
#include "preprocessor/string_pool.h"

namespace {

/// The place of a failure that belongs to no line: the first file as a whole.
TDMSourceLocation whole_input(const std::vector<std::string> &files)
{
  return {files.empty() ? "" : tdm::intern(files.front()), 0, 0};
}

/// Leaves objects to their region, which takes them without a look.
template <class Object> void leave(tdm::PooledVector<std::unique_ptr<Object>> &objects)
{
  for (auto &object : objects) static_cast<void>(object.release());
}

/// Runs `work`; a failure goes on as a finished text, which nothing behind it changes any more. The
/// text is that of the check that has failed before it, if one has: without mercy for that the
/// parse would have ended there.
template <typename Work>
void with_finished_texts(const std::optional<std::string> &check_failure, Work work)
{
  try {
    return work();
  } catch (TDMFileException *failure) {
    const std::unique_ptr<TDMFileException> owned(failure);
    throw new TDMSyntaxError(check_failure.value_or(owned->text()));
  } catch (Interval::PatternOverflowException *failure) {
    if (!check_failure) throw;
    delete failure;
  } catch (MauLibException *failure) {
    if (!check_failure) throw;
    delete failure;
  }
  throw new TDMSyntaxError(*check_failure);
}

} // namespace

TDMSpec::TDMSpec(const std::vector<std::string> &files, Checks checks)
{
  read(files, checks);
  region_.give_back();
}

void TDMSpec::read(const std::vector<std::string> &files, Checks checks)
{
  const tdm::PoolScope blocks(region_.pool());
  const std::unique_ptr<TDMFileInterface> records = parse(files);
  if (records == nullptr)
    throw new TDMUnexpectedErrorException(whole_input(files), "could not allocate TDM file");
  if (records->architectures.empty())
    throw new TDMSyntaxException(whole_input(files), "no architectures defined");
  const tdm::CheckRunner runner(checks == Checks::kept_for_reading ? &check_failure : nullptr);
  with_finished_texts(check_failure, [&] {
    build(*records, runner);
    if (!check_failure) runner.run([this] { check(); });
  });
}

/// The model stays to the region, which ends right behind.
TDMSpec::~TDMSpec()
{
  if (!tdm::Region::ends_objects) return;
  leave(memories);
  leave(buses);
  leave(processors);
}

std::unique_ptr<TDMFileInterface> TDMSpec::parse(const std::vector<std::string> &files)
{
  const tdm::RecordScope records;
  // A file that can't be opened is told as it is, without a position.
  TDMPreprocessedFileInputStream stream(files, &file_dependencies);
  try {
    return parse_target_file(stream);
  } catch (TDMFileSyntaxError *failure) {
    const std::unique_ptr<TDMFileSyntaxError> owned(failure);
    throw new TDMSyntaxError(owned->text());
  } catch (TDMFileException *failure) {
    const std::unique_ptr<TDMFileException> owned(failure);
    throw new TDMSyntaxException(whole_input(files), owned->text());
  }
}

/// Records that nothing else refers to are freed as soon as they have been used: they are at hand
/// then, and their memory serves what is built next.
void TDMSpec::build(TDMFileInterface &records, const tdm::CheckRunner &runner)
{
  create_processors(records, runner);
  create_globals(records);
  processor_index_.update();
  memory_index_.update();
  add_section_items(records);
}

void TDMSpec::add_section_items(TDMFileInterface &records)
{
  const tdm::ArgumentScope no_parameters;
  tdm::SectionItems items((tdm::SectionTargets(*this)));
  for (auto &setup : records.sectionSetups) {
    items.apply_setup(*setup, no_parameters);
    setup.reset();
  }
  for (auto &layout : records.sectionLayouts) {
    items.add_layout(*layout, no_parameters);
    layout.reset();
  }
}

void TDMSpec::create_processors(const TDMFileInterface &records, const tdm::CheckRunner &runner)
{
  const tdm::Templates templates(records.architectures, records.derivatives);
  for (const auto &record : records.processors)
    processors.push_back(tdm::make_object<TDMProcessor>(*record, templates, *this, runner));
  if (processors.empty())
    for (const auto &record : records.derivatives)
      processors.push_back(tdm::make_object<TDMProcessor>(*templates.derivative(*record->name),
                                                          templates, *this, runner));
  if (processors.empty()) create_default_processors(records, templates, runner);
}

/// With neither processors nor derivatives, each architecture that is no base of another stands
/// for a chip of its own.
void TDMSpec::create_default_processors(const TDMFileInterface &records,
                                        const tdm::Templates &templates,
                                        const tdm::CheckRunner &runner)
{
  std::unordered_set<std::string_view> bases;
  for (const auto &record : records.architectures)
    if (record->base && *record->base != *record->name) bases.insert(*record->base);
  for (const auto &record : records.architectures) {
    if (bases.contains(*record->name)) continue;
    const auto derivative = tdm::make_default_derivative(*record, templates);
    processors.push_back(tdm::make_object<TDMProcessor>(*derivative, templates, *this, runner));
  }
}

void TDMSpec::create_globals(TDMFileInterface &records)
{
  const tdm::ArgumentScope no_parameters;
  tdm::PooledVector<tdm::Text> destinations; // of the mappings of memories, one after the other
  memories.reserve(records.memories.size());
  for (auto &record : records.memories) {
    memories.push_back(tdm::make_object<TDMMemory>(*record, no_parameters));
    for (const auto &entry : record->mappings) destinations.push_back(*entry->destination);
    record.reset();
  }
  for (const auto &record : records.buses)
    buses.push_back(tdm::make_object<TDMBus>(*record, TDMBus::Form::reversed, no_parameters));

  // Buses of cores are out of reach for what is global.
  tdm::BusesInReach reach;
  reach.add(buses);
  for (const auto &processor : processors) reach.add(processor->buses, &processor->name);
  std::span<const tdm::Text> unresolved = destinations;
  for (const auto &memory : memories) {
    const size_t count = memory->own_mappings().size();
    memory->resolve_mappings(unresolved.first(count), reach, nullptr);
    unresolved = unresolved.subspan(count);
  }
  for (size_t i = 0; i < buses.size(); ++i) {
    buses[i]->resolve_mappings(*records.buses[i], TDMBus::Form::reversed, reach, nullptr, nullptr);
    records.buses[i].reset();
  }
}

void TDMSpec::check() const
{
  check_names();
  if (tdm::memories_lie_apart(*this)) return;
  tdm::OverlapCheck overlaps;
  for (const auto &memory : memories) overlaps.add(*memory);
  for (const auto &processor : processors)
    for (const auto &memory : processor->memories) overlaps.add(*memory);
}

void TDMSpec::check_names() const
{
  // The full name of what is global is its name.
  if (const TDMMemory *memory = memory_index_.first_repeated())
    throw new TDMSyntaxException(memory->location_or("name"), "global memory " +
                                                                  memory->full_name() +
                                                                  " defined more than once");
  if (const TDMBus *bus = tdm::first_repeated(buses))
    throw new TDMSyntaxException(bus->location_or("name"),
                                 "global bus " + bus->full_name() + " defined more than once");
  for (const auto &processor : processors) {
    if (processor.get() == processor_index_.first_repeated())
      throw new TDMSyntaxException(processor->location_or("name"),
                                   "Processor " + processor->name + " defined more than once");
    processor->check_names();
  }
}
