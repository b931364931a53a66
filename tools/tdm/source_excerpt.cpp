#include "source_excerpt.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tool {

namespace {

constexpr size_t tab_stop = 8;
constexpr size_t window = 96;
constexpr size_t behind_caret = 32;
constexpr std::string_view cut_mark = "...";
/// Bytes on either side of the caret that are looked at: more than enough to fill the window with
/// characters of four bytes.
constexpr size_t nearby = 512;

bool is_continuation(char c)
{
  return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

/// The number of bytes of the character of UTF-8 that a text begins with; 0 if it is none that can
/// be shown.
size_t character_length(std::string_view text)
{
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x20 || first == 0x7F) return 0;
  if (first < 0x80) return 1;
  const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < length) return 0;
  for (size_t i = 1; i < length; ++i)
    if (!is_continuation(text[i])) return 0;
  // The controls above ASCII.
  return first == 0xC2 && static_cast<unsigned char>(text[1]) < 0xA0 ? 0 : length;
}

/// A line as cells of one column each, and the cell that the caret belongs under.
struct Cells {
  std::vector<std::string> cells;
  size_t caret = 0;
};

Cells spread(std::string_view line, size_t caret_byte)
{
  Cells result;
  for (size_t at = 0; at < line.size();) {
    const size_t length = character_length(line.substr(at));
    const size_t next = at + std::max<size_t>(length, 1);
    if (caret_byte >= at && caret_byte < next) result.caret = result.cells.size();
    if (line[at] == '\t') {
      const size_t width = tab_stop - result.cells.size() % tab_stop;
      result.cells.insert(result.cells.end(), width, " ");
    } else {
      result.cells.push_back(length == 0 ? "?" : std::string(line.substr(at, length)));
    }
    at = next;
  }
  if (caret_byte >= line.size()) result.caret = result.cells.size();
  return result;
}

} // namespace

const SourceFiles::File &SourceFiles::read(const std::string &name)
{
  const auto [place, added] = files_.try_emplace(name);
  File &file = place->second;
  if (!added) return file;
  // A device may go on for ever, and a pipe gives what it has once.
  std::error_code unknown;
  if (!std::filesystem::is_regular_file(name, unknown)) return file;
  std::ifstream in(name, std::ios::binary);
  file.text.assign(std::istreambuf_iterator<char>(in), {});
  std::erase_if(file.text, [](char c) { return c == '\r' || c == '\x1A'; });
  find_lines(file);
  return file;
}

void SourceFiles::keep(const std::string &name, std::string text)
{
  File &file = files_[name];
  file = {std::move(text), {0}};
  find_lines(file);
}

void SourceFiles::find_lines(File &file)
{
  if (!file.text.empty() && file.starts.empty()) file.starts.push_back(0);
  for (size_t i = 0; i + 1 < file.text.size(); ++i)
    if (file.text[i] == '\n') file.starts.push_back(i + 1);
}

std::optional<std::string_view> SourceFiles::line(const std::string &name, int number)
{
  const File &file = read(name);
  if (number < 1 || static_cast<size_t>(number) > file.starts.size()) return std::nullopt;
  const size_t start = file.starts[static_cast<size_t>(number) - 1];
  const size_t end = static_cast<size_t>(number) < file.starts.size()
                         ? file.starts[static_cast<size_t>(number)] - 1
                         : file.text.size() - (file.text.ends_with('\n') ? 1 : 0);
  return std::string_view(file.text).substr(start, end - start);
}

Excerpt excerpt_of(std::string_view line, int column)
{
  size_t caret_byte = std::min(static_cast<size_t>(std::max(column, 1)) - 1, line.size());
  if (caret_byte > nearby) {
    size_t left_out = caret_byte - nearby;
    while (left_out < caret_byte && is_continuation(line[left_out])) ++left_out;
    line.remove_prefix(left_out);
    caret_byte -= left_out;
  }
  const Cells all = spread(line.substr(0, caret_byte + nearby), caret_byte);
  size_t first = 0;
  if (all.cells.size() > window && all.caret > window - behind_caret)
    first = std::min(all.caret - (window - behind_caret), all.cells.size() - window);
  const size_t last = std::min(first + window, all.cells.size());

  Excerpt excerpt;
  if (first > 0) excerpt.source += cut_mark;
  excerpt.caret.assign(excerpt.source.size() + (all.caret - first), ' ');
  excerpt.caret += '^';
  for (size_t i = first; i < last; ++i) excerpt.source += all.cells[i];
  if (last < all.cells.size()) excerpt.source += cut_mark;
  return excerpt;
}

} // namespace tool
