#include "session.h"

#include <filesystem>

#include <fmt/format.h>
#include <tdm_c/tdm_inspect.h>

namespace tool {

namespace {

/// `#include` beyond the limit.
constexpr int depth_message = 956;

/// An array for the library of texts that somebody else keeps.
class TextArray {
public:
  explicit TextArray(const std::vector<std::string> &texts)
  {
    for (const std::string &text : texts) items_.push_back(text.c_str());
    const auto count = static_cast<uint32_t>(items_.size());
    arr_ = {sizeof(char *), count, count, items_.data()};
  }

  [[nodiscard]] const tdm_arr *get() const { return &arr_; }

private:
  std::vector<const char *> items_;
  tdm_arr arr_{};
};

std::vector<std::string> names_for_library(const FileNames &names,
                                           const std::vector<std::string> &given)
{
  std::vector<std::string> result;
  result.reserve(given.size());
  for (const std::string &name : given) result.push_back(names.absolute(name));
  return result;
}

} // namespace

Session::Session(const Options &options, Reads reads) : names_(names_of(options))
{
  const std::vector<std::string> files = names_for_library(names_, options.files);
  const std::vector<std::string> include_dirs = names_for_library(names_, options.include_dirs);
  tdm_init(TextArray(options.defines).get());
  tdm_limits_set(TDM_LIMIT_INCLUDE_DEPTH, options.max_include_depth);
  if (reads == Reads::tokens)
    tokens_ = tdm_inspect_tokens_start(TextArray(files).get(), TextArray(include_dirs).get());
  else
    spec_ = tdm_inspect_parse_file(TextArray(files).get(), TextArray(include_dirs).get());
  if (spec_ == nullptr && tokens_ == nullptr) failure_ = tdm_inspect_failure_text();
  if (spec_ != nullptr && tdm_inspect_spec_check_failure(spec_) != nullptr)
    failure_ = tdm_inspect_spec_check_failure(spec_);
}

Session::~Session()
{
  tdm_inspect_tokens_end(tokens_);
  tdm_spec_free(spec_);
  tdm_cleanup();
}

FileNames names_of(const Options &options)
{
  std::vector<std::string> names = options.files;
  for (const std::string &directory : options.include_dirs) names.push_back(directory + "/");
  if (options.sections != "-") names.push_back(options.sections);
  return {std::filesystem::current_path().string(), names};
}

int exit_code_of_errors()
{
  tdm_inspect_message message;
  for (int i = 0; tdm_inspect_get_message(i, &message) != 0; ++i)
    if (message.number == depth_message) return exit_include_depth;
  return exit_errors;
}

std::vector<tdm_core *> cores_of(const tdm_processor *processor)
{
  return take_elements<tdm_core *>(tdm_processor_get_cores(processor));
}

std::vector<tdm_space *> spaces_of(const tdm_core *core)
{
  return take_elements<tdm_space *>(tdm_core_get_spaces(core));
}

std::vector<tdm_processor *> processors_of(const tdm_spec *spec)
{
  return take_elements<tdm_processor *>(tdm_spec_get_processors(spec));
}

bool is_placeholder(const tdm_space *space)
{
  return text_of(tdm_space_get_full_name(space)).starts_with("::");
}

const char *memory_type_name(const tdm_memory *memory)
{
  switch (tdm_memory_get_type(memory)) {
  case TDM_MEMORY_RAM:
    return "ram";
  case TDM_MEMORY_ROM:
    return "rom";
  case TDM_MEMORY_NVRAM:
    return "nvram";
  case TDM_MEMORY_BLOCKRAM:
    return "blockram";
  default:
    return "unknown";
  }
}

std::string place_text(const FileNames &names, const tdm_source_location *location)
{
  if (location == nullptr) return "";
  return fmt::format("{}:{}", names.shown(tdm_source_location_get_filename(location)),
                     tdm_source_location_get_line_number(location));
}

std::vector<tdm_memory *> memories_of(const tdm_spec *spec)
{
  std::vector<tdm_memory *> memories;
  const auto append = [&](tdm_arr *arr) {
    for (tdm_memory *memory : take_elements<tdm_memory *>(arr)) memories.push_back(memory);
  };
  for (const tdm_processor *processor : processors_of(spec))
    append(tdm_processor_get_memories(processor));
  append(tdm_spec_get_memories(spec));
  return memories;
}

} // namespace tool
