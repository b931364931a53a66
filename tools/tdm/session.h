// The library from start to end, around one description.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <tdm_c/tdm.h>
#include <tdm_c/tdm_inspect.h>

#include "file_names.h"
#include "options.h"

namespace tool {

class Session {
public:
  /// What is made of the files: a model, or tokens to be read.
  enum class Reads { model, tokens };

  /// Starts the library and reads the description. Reports nothing.
  explicit Session(const Options &options, Reads reads = Reads::model);
  ~Session();
  Session(const Session &) = delete;
  Session &operator=(const Session &) = delete;

  /// Null if the description can't be read.
  [[nodiscard]] const tdm_spec *spec() const { return spec_; }
  /// Null if the tokens can't be read, or weren't asked for.
  [[nodiscard]] tdm_token_stream *tokens() const { return tokens_; }
  /// What is wrong with it, "" for nothing. It may be readable nevertheless, to tell more of what
  /// is wrong; nothing is to be located by it.
  [[nodiscard]] const std::string &failure() const { return failure_; }
  [[nodiscard]] const FileNames &names() const { return names_; }

private:
  FileNames names_;
  tdm_spec *spec_ = nullptr;
  tdm_token_stream *tokens_ = nullptr;
  std::string failure_;
};

/// The names of the files of a command line.
[[nodiscard]] FileNames names_of(const Options &options);

/// What the process ends with if something is wrong with the description that was read last.
[[nodiscard]] int exit_code_of_errors();

/// The elements of an array of the library, which is given back here.
template <class Element> std::vector<Element> take_elements(tdm_arr *arr)
{
  if (arr == nullptr) return {};
  const auto *items = static_cast<const Element *>(arr->items);
  std::vector<Element> elements(items, items + arr->count);
  tdm_arr_del(arr);
  return elements;
}

/// Calls, and throws what the library says if that failed.
template <class Call> auto checked(Call call)
{
  const int64_t failures_before = tdm_inspect_failure_count();
  auto result = call();
  if (tdm_inspect_failure_count() != failures_before)
    throw std::runtime_error(tdm_inspect_failure_text());
  return result;
}

/// "" for null.
[[nodiscard]] inline std::string text_of(const char *text)
{
  return text != nullptr ? text : "";
}

// Lists of the model.
[[nodiscard]] std::vector<tdm_core *> cores_of(const tdm_processor *processor);
[[nodiscard]] std::vector<tdm_space *> spaces_of(const tdm_core *core);
[[nodiscard]] std::vector<tdm_processor *> processors_of(const tdm_spec *spec);
/// Whether it is no space of the description, but the one that stands for what isn't allocated.
[[nodiscard]] bool is_placeholder(const tdm_space *space);
/// "ram", "rom" ...
[[nodiscard]] const char *memory_type_name(const tdm_memory *memory);
/// "chip.tdm:40", by the name that the user gave; "" for null.
[[nodiscard]] std::string place_text(const FileNames &names, const tdm_source_location *location);
/// Of all processors, then the global ones.
[[nodiscard]] std::vector<tdm_memory *> memories_of(const tdm_spec *spec);

} // namespace tool
