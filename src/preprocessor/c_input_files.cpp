// Searching and opening. The first block is read as a file is opened, since only reading tells
// whether it can be read (a directory opens like a file).
#include "preprocessor/c_input_files.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "preprocessor/c_diag.h"
#include "preprocessor/c_input.h"
#include "preprocessor/c_opt.h"
#include "preprocessor/c_srcpos.h"
#include "preprocessor/kept_texts.h"
#include "preprocessor/orderly_stop.h"
#include "preprocessor/path_join.h"
#include "preprocessor/string_pool.h"

namespace tdm {

namespace {

// Systems let a process open a thousand files or a million. A file that includes itself should
// come to its end also on the latter, before memory does.
constexpr int most_open_files = 16384;

constexpr const char *tool_directory = "";

struct {
  std::vector<std::string> environment_directories;
  std::vector<InputListener> listeners;
  int open_files;
  const char *opening;
  char *first_block; ///< null before there is one
} state;

// "a;b,c" as it stands in the environment; empty pieces name no directory.
void cut_directories(std::string_view value)
{
  while (!value.empty()) {
    const std::size_t end = std::min(value.find_first_of(";,"), value.size());
    if (end > 0) state.environment_directories.emplace_back(value.substr(0, end));
    value.remove_prefix(std::min(end + 1, value.size()));
  }
}

char upper(char c)
{
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool refuse(const char *name)
{
  refuse_kept_texts();
  diag_at(F_open_failed, srcpos_current(), name);
  return false;
}

// Bytes read, or -1. Less than asked for only at the end of the file. That is known behind as many
// bytes as are expected, if there are any: the system needn't be asked again.
ssize_t read_fully(int handle, char *buffer, std::size_t size, off_t expected)
{
  std::size_t done = 0;
  while (done < size && (done == 0 || static_cast<off_t>(done) != expected)) {
    const ssize_t count = ::read(handle, buffer + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return done > 0 ? static_cast<ssize_t>(done) : -1;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  return static_cast<ssize_t>(done);
}

constexpr std::size_t first_read = 32768;

/// Names the file while it is opened and begun: a pipe that nobody writes keeps one waiting.
class OpeningFile {
public:
  explicit OpeningFile(const char *name) { state.opening = name; }
  ~OpeningFile() { state.opening = nullptr; }
  OpeningFile(const OpeningFile &) = delete;
  OpeningFile &operator=(const OpeningFile &) = delete;
};

// With the "/" at its end. The names of files come out of path_join, so they have no "\\".
const char *directory_of(std::string_view name)
{
  return intern(name.substr(0, name.rfind('/') + 1));
}

// Where a file that is included is searched first.
const char *local_directory()
{
  const TDMInputRecord *record = reading_file();
  return record == nullptr ? intern("") : record->directory;
}

bool open_in(std::string_view directory, std::string_view name)
{
  return input_open_file(intern(path_join(directory, name)));
}

/// A handle that is closed unless it is passed on.
class Handle {
public:
  explicit Handle(const char *name) : handle_(::open(name, O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
  ~Handle()
  {
    if (handle_ >= 0) ::close(handle_);
  }
  Handle(const Handle &) = delete;
  Handle &operator=(const Handle &) = delete;

  [[nodiscard]] int get() const { return handle_; }
  int pass_on() { return std::exchange(handle_, -1); }

private:
  int handle_;
};

/// The block that the next file is read into.
char *first_block()
{
  if (state.first_block == nullptr) {
    state.first_block = static_cast<char *>(std::malloc(input_buffer_size()));
    if (state.first_block == nullptr) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  }
  return state.first_block;
}

// A short file needs no room for further blocks; thousands may be open at once.
char *copy_of(std::string_view text)
{
  auto *const copy = static_cast<char *>(std::malloc(text.size() + 1));
  if (copy == nullptr) stop_no_memory("c-memory.c: Cannot allocate memory.\n");
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = 0;
  return copy;
}

// Who begins to read the text gets no handle.
void read_kept(KeptText &text, OpenedFile &file)
{
  text.in_use = true;
  file.kept = &text;
  file.text = text.text;
  file.exhausted = true;
}

// Opens and begins a file. False if it doesn't exist or can't be read, with a message then.
bool open_and_begin(OpenedFile &file)
{
  const OpeningFile opening(file.name);
  Handle handle(file.name);
  if (handle.get() < 0 && (errno == ENOENT || errno == ENOTDIR)) return false;
  if (handle.get() < 0) return refuse(file.name);
  struct stat status = {};
  const bool regular = ::fstat(handle.get(), &status) == 0 && S_ISREG(status.st_mode);
  char *const block = first_block();
  const ssize_t length = read_fully(handle.get(), block, first_read, regular ? status.st_size : 0);
  if (length < 0) return refuse(file.name);

  file.text = {block, input_drop_unwanted(block, static_cast<std::size_t>(length))};
  block[file.text.size()] = 0;
  file.exhausted = static_cast<std::size_t>(length) < first_read;
  if (!file.exhausted) {
    file.buffer = std::exchange(state.first_block, nullptr);
  } else if (KeptText *const kept = regular && status.st_size == length
                                        ? keep_text_of(file.name, file.directory, file.text)
                                        : nullptr) {
    read_kept(*kept, file);
  } else {
    file.buffer = copy_of(file.text);
    file.text = {file.buffer, file.text.size()};
  }
  file.handle = handle.pass_on();
  return true;
}

void push_opened(const OpenedFile &file)
{
  ++state.open_files;
  input_push_file(file);
  if (file.handle < 0) return;
  // Told last, so that a listener that fails leaves the stack whole.
  for (const InputListener listener : state.listeners) listener(file.name);
}

} // namespace

void input_files_start(std::string_view tool_name)
{
  std::string variable(tool_name);
  std::transform(variable.begin(), variable.end(), variable.begin(), upper);
  variable += "INC";
  state.environment_directories.clear();
  state.opening = nullptr;
  kept_texts_start();
  if (const char *value = std::getenv(variable.c_str())) cut_directories(value);
}

void input_files_stop()
{
  internal_check(state.listeners.empty());
  state.environment_directories.clear();
  std::free(std::exchange(state.first_block, nullptr));
  kept_texts_stop();
}

const char *opening_file()
{
  return state.opening;
}

KeptText *input_included_before(const char *written)
{
  return state.open_files < most_open_files ? find_included_text(local_directory(), written)
                                            : nullptr;
}

void input_open_again(KeptText &text)
{
  input_flush_unread();
  OpenedFile file = {};
  file.name = text.name;
  file.directory = text.directory;
  file.handle = -1;
  read_kept(text, file);
  push_opened(file);
}

bool input_include(const char *written, std::string_view name, bool search_local,
                   bool search_default)
{
  const char *const directory = local_directory();
  if (!input_search_file(name, search_local, true, search_default)) return false;
  if (KeptText *const text = input_stack.top->kept) note_included_text(directory, written, *text);
  return true;
}

void input_close_file(int handle, char *buffer, KeptText *kept)
{
  if (handle >= 0) ::close(handle);
  std::free(buffer);
  if (kept != nullptr) kept->in_use = false;
  --state.open_files;
}

} // namespace tdm

bool input_open_file(const char *name)
{
  using namespace tdm;
  input_flush_unread();
  if (state.open_files >= most_open_files) return refuse(name);
  OpenedFile file = {};
  file.name = name;
  file.directory = directory_of(name);
  file.handle = -1;
  if (KeptText *kept = find_kept_text(name))
    read_kept(*kept, file);
  else if (!open_and_begin(file))
    return false;
  push_opened(file);
  return true;
}

bool input_search_file(std::string_view name, bool search_local, bool search_paths,
                       bool search_default)
{
  using namespace tdm;
  if (name.find('\0') != name.npos) return false; // no file has such a name
  if (search_local && open_in(local_directory(), name)) return true;
  if (search_paths) {
    for (int i = 0; i < option_count(optINCDIR); ++i)
      if (open_in(option_get_string(optINCDIR, i), name)) return true;
    for (const std::string &directory : state.environment_directories)
      if (open_in(directory, name)) return true;
  }
  return search_default && open_in(path_join(tool_directory, "../include/"), name);
}

void input_add_listener(InputListener listener)
{
  auto &listeners = tdm::state.listeners;
  if (listener != nullptr)
    listeners.push_back(listener);
  else if (!listeners.empty())
    listeners.pop_back();
}
