// The verb preprocess: the text that the language reads, as `cpp` writes it.
#include <algorithm>
#include <string>
#include <unistd.h>
#include <vector>

#include <tdm_c/tdm_inspect.h>

#include "verbs.h"

namespace tool {

namespace {

/// A marker says less than so many empty lines.
constexpr int most_empty_lines = 8;

std::string quoted(const std::string &name)
{
  std::string text = "\"";
  for (const char c : name) {
    if (c == '"' || c == '\\') text += '\\';
    text += c;
  }
  return text + '"';
}

/// Puts tokens on the lines on which they stand in their files.
class Writer {
public:
  Writer(const FileNames &names, bool markers, std::ostream &out)
      : names_(names), markers_(markers), out_(out)
  {
  }

  void write(const tdm_inspect_token &token)
  {
    switch (token.number) {
    case TDM_TOKEN_NEWLINE:
      blank_ = false;
      line_ended_ = true;
      break;
    case TDM_TOKEN_WHITE:
    case TDM_TOKEN_COMMENT:
      blank_ = true;
      break;
    default:
      move_to(token.position);
      if (at_line_start_)
        out_ << std::string(static_cast<size_t>(std::max(token.position.column - 1, 0)), ' ');
      else if (blank_)
        out_ << ' ';
      out_ << token.text;
      at_line_start_ = false;
      blank_ = false;
      line_ended_ = false;
    }
  }

  void finish() { end_line(); }

private:
  void end_line()
  {
    if (at_line_start_) return;
    out_ << '\n';
    ++line_;
    at_line_start_ = true;
  }

  void move_to(const tdm_srcpos &position)
  {
    const bool same_file = !open_.empty() && open_.back().name == position.file;
    if (same_file && position.line == line_ && !line_ended_) return;
    // The same line once more, as when a file is included twice, is a place of its own.
    const bool ahead = same_file && position.line > line_;
    end_line();
    if (!ahead || position.line - line_ > most_empty_lines)
      mark(position);
    else if (markers_)
      out_ << std::string(static_cast<size_t>(position.line - line_), '\n');
    line_ = position.line;
  }

  /// Tells how the place is reached: which files are left, which are entered, and the place itself.
  void mark(const tdm_srcpos &position)
  {
    std::vector<OpenFile> files = files_around(position);
    const auto differ = std::mismatch(open_.begin(), open_.end(), files.begin(), files.end());
    const auto common = static_cast<size_t>(differ.first - open_.begin());
    const bool renamed = common + 1 == open_.size() && common + 1 == files.size() &&
                         open_.back().included_at == files.back().included_at;
    if (common > 0 && common < open_.size() && common < files.size() && !renamed)
      put_marker(files[common].included_at, files[common - 1].name, " 2");
    for (size_t i = common; i + 1 < files.size(); ++i)
      put_marker(files[i + 1].included_at, files[i].name, i > 0 ? " 1" : "");
    const bool entered = files.size() > 1 && common < files.size() && !renamed;
    const bool returned = common == files.size() && common < open_.size();
    put_marker(position.line, position.file, entered ? " 1" : returned ? " 2" : "");
    open_ = std::move(files);
  }

  void put_marker(int line, const char *file, const char *flag)
  {
    if (markers_) out_ << "# " << line << ' ' << quoted(names_.shown(file)) << flag << '\n';
  }

  struct OpenFile {
    const char *name; ///< the library's: where texts are equal, they are the same
    int included_at;  ///< line of the #include in the file around it, 0 for none

    friend bool operator==(const OpenFile &, const OpenFile &) = default;
  };

  /// From the outermost one to that of the position.
  static std::vector<OpenFile> files_around(const tdm_srcpos &position)
  {
    std::vector<OpenFile> files;
    const char *name = position.file;
    for (const tdm_srcpos &include :
         take_elements<tdm_srcpos>(tdm_inspect_include_chain(&position))) {
      files.push_back({name, include.line});
      name = include.file;
    }
    files.push_back({name, 0});
    std::reverse(files.begin(), files.end());
    return files;
  }

  const FileNames &names_;
  bool markers_;
  std::ostream &out_;
  std::vector<OpenFile> open_; ///< what the last marker said
  int line_ = 0;
  bool at_line_start_ = true;
  bool blank_ = false;
  bool line_ended_ = false; ///< since the token that was written last
};

} // namespace

int preprocess(const Options &options, std::ostream &out, std::ostream &messages)
{
  const Session session(options, Session::Reads::tokens);
  Writer writer(session.names(), !options.no_markers, out);
  tdm_inspect_token token;
  if (session.tokens() != nullptr)
    while (tdm_inspect_tokens_next(session.tokens(), &token) != 0) writer.write(token);
  writer.finish();
  out.flush();
  Diagnostics(session.names(), messages, shows_colors(options.color, STDERR_FILENO))
      .report(findings_of(session));
  return session.tokens() == nullptr || tdm_get_error_count() > 0 ? exit_code_of_errors() : exit_ok;
}

} // namespace tool
