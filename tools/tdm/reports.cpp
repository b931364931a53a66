#include "reports.h"

#include <algorithm>

#include "json_values.h"
#include "message_texts.h"
#include "source_excerpt.h"

namespace tool {

namespace {

/// The rule of findings that have no number.
constexpr const char *unnumbered_rule = "description";

const std::string &rule_of(const Finding &finding)
{
  static const std::string unnumbered = unnumbered_rule;
  return finding.number.empty() ? unnumbered : finding.number;
}

Json place_json(const SourcePlace &place)
{
  if (place.file.empty()) return nullptr;
  return {{"file", place.file}, {"line", place.line}, {"column", place.column}};
}

Json finding_json(const Finding &finding)
{
  Json chain = Json::array();
  for (const SourcePlace &from : finding.included_from) chain.push_back(place_json(from));
  Json notes = Json::array();
  for (const Finding &note : finding.notes) notes.push_back(finding_json(note));
  return {{"severity", finding.severity},
          {"number", finding.number.empty() ? Json(nullptr) : Json(finding.number)},
          {"text", finding.text},
          {"location", place_json(finding.place)},
          {"included_from", std::move(chain)},
          {"notes", std::move(notes)}};
}

void write_plain_json(const std::vector<Checked> &descriptions, std::ostream &out)
{
  Json list = Json::array();
  for (const Checked &checked : descriptions) {
    Json findings = Json::array();
    for (const Finding &finding : checked.findings) findings.push_back(finding_json(finding));
    list.push_back({{"files", checked.files},
                    {"in_order", checked.in_order},
                    {"findings", std::move(findings)}});
  }
  write_json(out, {{"schema_version", json_schema_version}, {"descriptions", std::move(list)}});
}

/// A relative name stays relative: whoever reads the report knows to what.
std::string uri_of(const std::string &file)
{
  constexpr std::string_view unreserved = "-._~/";
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string uri = file.starts_with('/') ? "file://" : "";
  for (const char c : file) {
    const auto byte = static_cast<unsigned char>(c);
    const bool alphanumeric =
        (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    if (alphanumeric || unreserved.find(c) != std::string_view::npos)
      uri += c;
    else
      uri.append({'%', digits[byte >> 4U], digits[byte & 0xFU]});
  }
  return uri;
}

/// SARIF counts characters where the library counts bytes.
class SarifReport {
public:
  explicit SarifReport(const std::vector<Checked> &descriptions)
  {
    for (const Checked &checked : descriptions)
      for (const Finding &finding : checked.findings) add(finding, checked.files.front());
    for (const Checked &checked : descriptions) successful_ = successful_ && checked.in_order;
  }

  [[nodiscard]] Json json() const
  {
    Json driver = {{"name", "tdm"}, {"version", TDM_TOOL_VERSION}, {"rules", rules_}};
    Json run = {{"tool", {{"driver", std::move(driver)}}},
                {"invocations", {{{"executionSuccessful", successful_}}}},
                {"columnKind", "unicodeCodePoints"},
                {"results", results_}};
    return {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
            {"version", "2.1.0"},
            {"runs", Json::array({std::move(run)})}};
  }

private:
  int column_of(const SourcePlace &place)
  {
    const auto line = sources_.line(place.path, place.line);
    const size_t bytes = static_cast<size_t>(std::max(place.column, 1)) - 1;
    if (!line.has_value()) return static_cast<int>(bytes) + 1;
    const std::string_view before = line->substr(0, bytes);
    const auto characters = std::count_if(before.begin(), before.end(), [](char c) {
      return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    });
    return static_cast<int>(characters) + 1;
  }

  Json location(const SourcePlace &place)
  {
    Json physical = {{"artifactLocation", {{"uri", uri_of(place.file)}}}};
    if (place.line > 0)
      physical["region"] = {{"startLine", place.line}, {"startColumn", column_of(place)}};
    return {{"physicalLocation", std::move(physical)}};
  }

  static SourcePlace place_of(const Finding &finding, const std::string &description)
  {
    if (!finding.place.file.empty()) return finding.place;
    return {"", finding.file.empty() ? description : finding.file, 0, 0};
  }

  size_t rule_index(const Finding &finding)
  {
    const std::string &id = rule_of(finding);
    for (size_t i = 0; i < rules_.size(); ++i)
      if (rules_[i]["id"] == id) return i;
    Json rule = {{"id", id}};
    if (finding.number.empty()) {
      rule["shortDescription"] = {{"text", "The description can't be read"}};
    } else if (const auto text = message_text(finding.number); text.has_value()) {
      rule["shortDescription"] = {{"text", text->title}};
      if (!text->meaning.empty()) rule["fullDescription"] = {{"text", text->meaning}};
    }
    rules_.push_back(std::move(rule));
    return rules_.size() - 1;
  }

  /// What stands at no place is about a file that can't be opened, or about all of a description.
  void add(const Finding &finding, const std::string &description)
  {
    std::string whole = finding.text;
    for (const Finding &note : finding.notes) // how many more there are, for instance
      if (note.place.file.empty()) whole += "; " + note.text;
    Json result = {{"ruleId", rule_of(finding)},
                   {"ruleIndex", rule_index(finding)},
                   {"level", finding.severity},
                   {"message", {{"text", whole}}},
                   {"locations", Json::array({location(place_of(finding, description))})}};
    Json related = Json::array();
    const auto relate = [&](const SourcePlace &place, const std::string &text) {
      if (place.file.empty()) return;
      Json entry = location(place);
      entry["message"] = {{"text", text}};
      related.push_back(std::move(entry));
    };
    for (const SourcePlace &from : finding.included_from) relate(from, "included from here");
    for (const Finding &note : finding.notes) relate(note.place, note.text);
    if (!related.empty()) result["relatedLocations"] = std::move(related);
    results_.push_back(std::move(result));
  }

  Json rules_ = Json::array();
  Json results_ = Json::array();
  bool successful_ = true;
  SourceFiles sources_;
};

/// A runner of workflows ends commands at line ends, and properties at the other two.
std::string escaped(std::string_view text, bool is_property)
{
  std::string result;
  for (const char c : text) {
    if (c == '%')
      result += "%25";
    else if (c == '\r')
      result += "%0D";
    else if (c == '\n')
      result += "%0A";
    else if (is_property && c == ':')
      result += "%3A";
    else if (is_property && c == ',')
      result += "%2C";
    else
      result += c;
  }
  return result;
}

void write_github(const Finding &finding, std::ostream &out)
{
  const bool is_note = std::string_view(finding.severity) == "note";
  out << "::" << (is_note ? "notice" : finding.severity) << ' ';
  const std::string &file = finding.place.file.empty() ? finding.file : finding.place.file;
  if (!file.empty()) out << "file=" << escaped(file, true) << ',';
  if (finding.place.line > 0)
    out << "line=" << finding.place.line << ",col=" << finding.place.column << ',';
  out << "title=tdm" << (finding.number.empty() ? "" : " ") << finding.number
      << "::" << escaped(finding.text, false) << '\n';
  for (const Finding &note : finding.notes) write_github(note, out);
}

} // namespace

void write_report(std::string_view form, const std::vector<Checked> &descriptions,
                  std::ostream &out)
{
  if (form == "json") {
    write_plain_json(descriptions, out);
  } else if (form == "sarif") {
    write_json(out, SarifReport(descriptions).json());
  } else {
    for (const Checked &checked : descriptions)
      for (const Finding &finding : checked.findings) write_github(finding, out);
  }
}

} // namespace tool
