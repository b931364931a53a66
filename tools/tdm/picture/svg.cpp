#include "svg.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <pugixml.hpp>
#include <set>

namespace tool::picture {

namespace {

constexpr const char *style_sheet = R"(
.tdm-map {
  --page: #ffffff; --ink: #1f2328; --soft: #656d76; --line: #c9d1d9; --window: #f0f2f5;
  --rom: #d4e4fb; --rom-line: #4a7bc8; --ram: #d5eed8; --ram-line: #4c9a5b;
  --nvram: #fbe6bd; --nvram-line: #b9801b; --blockram: #e6dcf8; --blockram-line: #8059c0;
  --unknown: #e4e7eb; --unknown-line: #7d8590; --red: #d1242f;
  background: var(--page);
  font-family: ui-monospace, "DejaVu Sans Mono", "Liberation Mono", Menlo, Consolas, monospace;
}
@media (prefers-color-scheme: dark) {
  .tdm-map {
    --page: #0d1117; --ink: #e6edf3; --soft: #8d96a0; --line: #3d444d; --window: #1a2029;
    --rom: #17355e; --rom-line: #5b92e0; --ram: #173d22; --ram-line: #57ab65;
    --nvram: #4a3510; --nvram-line: #d29f38; --blockram: #35275a; --blockram-line: #a585e0;
    --unknown: #2d333b; --unknown-line: #8b949e; --red: #ff6b64;
  }
}
.tdm-map text { fill: var(--ink); }
.tdm-map path { fill: none; stroke: var(--line); }
.page { fill: var(--page); }
.title { font-weight: 700; }
.head { font-weight: 700; }
.tdm-map .note, .tdm-map .kind, .tdm-map .owner, .tdm-map .address, .tdm-map .gap { fill: var(--soft); }
.tdm-map .gap { font-style: italic; }
.tdm-map .own { fill: var(--soft); stroke: var(--page); stroke-width: 3px; paint-order: stroke; }
.tdm-map .remark { fill: var(--ink); fill-opacity: .68; }
.tdm-map .tick { stroke: var(--soft); }
.tdm-map .fold { stroke: var(--soft); stroke-opacity: .55; }
.window { fill: var(--window); }
.rom { --fill: var(--rom); --edge: var(--rom-line); }
.ram { --fill: var(--ram); --edge: var(--ram-line); }
.nvram { --fill: var(--nvram); --edge: var(--nvram-line); }
.blockram { --fill: var(--blockram); --edge: var(--blockram-line); }
.unknown, .plain { --fill: var(--unknown); --edge: var(--unknown-line); }
.memory { fill: var(--fill); stroke: var(--edge); stroke-width: .9; }
.memory.passing { fill-opacity: .55; stroke-opacity: .55; }
.memory.alias { fill-opacity: .35; stroke-dasharray: 3 2; }
.hatch { fill: url(#tdm-hatch); pointer-events: none; }
#tdm-hatch path { stroke: var(--ink); stroke-opacity: .13; stroke-width: 1.6; }
.tdm-map .tie { stroke: var(--edge); stroke-width: 1.2; stroke-opacity: .8; }
.knot { fill: var(--edge); }
.tdm-map text.overlap, .tdm-map .error { fill: var(--red); font-weight: 700; }
rect.overlap { fill: var(--red); fill-opacity: .16; stroke: var(--red); stroke-width: 2; pointer-events: stroke; }
g:hover > .memory, g:hover > .tie { stroke-width: 2.2; stroke-opacity: 1; }
)";

/// Two digits behind the point at the most, the same on every machine.
std::string number(double value)
{
  const auto hundredths = static_cast<long long>(std::llround(value * 100));
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%s%lld.%02lld", hundredths < 0 ? "-" : "",
                std::llabs(hundredths) / 100, std::llabs(hundredths) % 100);
  std::string result = text.data();
  while (result.ends_with('0')) result.pop_back();
  if (result.ends_with('.')) result.pop_back();
  return result;
}

void set(pugi::xml_node node, const char *name, const std::string &value)
{
  node.append_attribute(name) = value.c_str();
}

void set(pugi::xml_node node, const char *name, double value)
{
  set(node, name, number(value));
}

void add_path(pugi::xml_node parent, const Path &path)
{
  pugi::xml_node node = parent.append_child("path");
  set(node, "class", path.style);
  std::string way;
  for (const auto &[x, y] : path.points)
    way += (way.empty() ? "M" : " ") + number(x) + " " + number(y);
  set(node, "d", way);
}

void add_box(pugi::xml_node parent, const Box &box)
{
  pugi::xml_node node = parent.append_child("rect");
  set(node, "class", box.style);
  set(node, "x", box.x);
  set(node, "y", box.y);
  set(node, "width", box.width);
  set(node, "height", box.height);
}

void add_label(pugi::xml_node parent, const Label &label)
{
  pugi::xml_node node = parent.append_child("text");
  set(node, "class", label.style);
  set(node, "x", label.x);
  set(node, "y", label.y);
  set(node, "font-size", label.size);
  if (label.anchor == Label::Anchor::end) set(node, "text-anchor", std::string("end"));
  if (label.anchor == Label::Anchor::middle) set(node, "text-anchor", std::string("middle"));
  node.text().set(label.text.c_str());
}

void add_item(pugi::xml_node parent, const Item &item)
{
  pugi::xml_node group = parent.append_child("g");
  if (item.memory) set(group, "class", "m" + std::to_string(*item.memory));
  if (!item.tooltip.empty()) group.append_child("title").text().set(item.tooltip.c_str());
  for (const Path &path : item.paths) add_path(group, path);
  for (const Box &box : item.boxes) add_box(group, box);
  for (const Label &label : item.labels) add_label(group, label);
}

/// Pointing at a memory marks all the places where it appears.
std::string highlights(const Picture &picture)
{
  std::set<size_t> memories;
  for (const Item &item : picture.items)
    if (item.memory) memories.insert(*item.memory);
  std::string rules;
  for (const size_t memory : memories) {
    const std::string name = ".m" + std::to_string(memory);
    rules += ".tdm-map:has(" + name + ":hover) " + name + " > .memory { stroke-width: 2.2; }\n";
  }
  return rules;
}

void add_definitions(pugi::xml_node svg)
{
  pugi::xml_node pattern = svg.append_child("defs").append_child("pattern");
  set(pattern, "id", std::string("tdm-hatch"));
  set(pattern, "width", 6);
  set(pattern, "height", 6);
  set(pattern, "patternUnits", std::string("userSpaceOnUse"));
  set(pattern, "patternTransform", std::string("rotate(45)"));
  set(pattern.append_child("path"), "d", std::string("M0 0 0 6"));
}

void add_svg(pugi::xml_node parent, const Picture &picture)
{
  pugi::xml_node svg = parent.append_child("svg");
  set(svg, "xmlns", std::string("http://www.w3.org/2000/svg"));
  set(svg, "class", std::string("tdm-map"));
  set(svg, "width", picture.width);
  set(svg, "height", picture.height);
  set(svg, "viewBox", "0 0 " + number(picture.width) + " " + number(picture.height));
  set(svg, "role", std::string("img"));
  svg.append_child("title").text().set(picture.title.c_str());
  svg.append_child("style").text().set((style_sheet + highlights(picture)).c_str());
  add_definitions(svg);
  add_box(svg, {0, 0, picture.width, picture.height, "page"});
  for (const Item &item : picture.items) add_item(svg, item);
}

constexpr const char *page_style = R"(
:root { color-scheme: light dark; }
body { margin: 0; background: #ffffff; }
svg { display: block; width: 100%; max-width: 1400px; height: auto; margin: 0 auto; }
@media (prefers-color-scheme: dark) { body { background: #0d1117; } }
)";

constexpr double least_scale = 0.85;

} // namespace

void write_svg(std::ostream &out, const Picture &picture)
{
  pugi::xml_document document;
  add_svg(document.root(), picture);
  document.save(out, "", pugi::format_indent | pugi::format_no_declaration, pugi::encoding_utf8);
}

void write_page(std::ostream &out, const Picture &picture)
{
  pugi::xml_document document;
  document.append_child(pugi::node_doctype).set_value("html");
  pugi::xml_node html = document.append_child("html");
  set(html, "lang", std::string("en"));
  pugi::xml_node head = html.append_child("head");
  set(head.append_child("meta"), "charset", std::string("utf-8"));
  head.append_child("title").text().set(picture.title.c_str());
  // Rather moved than too small to be read.
  const std::string least = "svg { min-width: " + number(least_scale * picture.width) + "px; }\n";
  head.append_child("style").text().set((page_style + least).c_str());
  add_svg(html.append_child("body"), picture);
  document.save(out, "", pugi::format_indent | pugi::format_no_declaration, pugi::encoding_utf8);
}

} // namespace tool::picture
