// layout: what a walk over a space meets.
#include "find.h"
#include "outline_json.h"
#include "outline_text.h"
#include "verbs.h"

namespace tool {

Answers answers_of(const Options &options)
{
  return {{options.exists.begin(), options.exists.end()}};
}

int report_failures(const Outline &outline, Diagnostics &diagnostics)
{
  for (const std::string &text : outline.failures) diagnostics.report(parse_failure(text));
  return outline.failures.empty() ? exit_ok : exit_errors;
}

int layout(const Options &options, const Session &session, Diagnostics &diagnostics,
           std::ostream &out)
{
  const MappingNumbers mappings(session.spec());
  const Outline outline = read_outline(find_space(session.spec(), options.space),
                                       answers_of(options), {session.names(), mappings, false});
  const int result = report_failures(outline, diagnostics);
  if (options.json) {
    Json document{{"schema_version", json_schema_version},
                  {"space", json_space(outline)},
                  {"items", json_items(outline.items, session.names())}};
    add_outcome(document, outline, session.names());
    write_json(out, document);
  } else {
    print_tree(out, outline_tree(outline, session.names()));
  }
  return result;
}

} // namespace tool
