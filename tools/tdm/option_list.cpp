#include "option_list.h"

#include <CLI/CLI.hpp>

#include "json_values.h"

namespace tool {

namespace {

Json option_json(const CLI::Option &option)
{
  Json names = Json::array();
  for (const std::string &name : option.get_snames()) names.push_back("-" + name);
  for (const std::string &name : option.get_lnames()) names.push_back("--" + name);
  const bool takes_value = option.get_items_expected_max() > 0;
  const std::string value = option.get_positional() ? option.get_name() : option.get_type_name();
  return {{"names", std::move(names)},
          {"value", takes_value ? Json(value) : Json(nullptr)},
          {"does", option.get_description()},
          {"required", option.get_required()},
          {"repeated", takes_value && option.get_items_expected_max() > 1}};
}

Json app_json(const CLI::App &app)
{
  Json options = Json::array();
  for (const CLI::Option *option : app.get_options())
    if (!option->get_group().empty()) options.push_back(option_json(*option));
  Json json = {{"name", app.get_name()},
               {"does", app.get_description()},
               {"options", std::move(options)},
               {"footer", app.get_footer()}};
  return json;
}

} // namespace

void write_option_list(const CLI::App &app, std::ostream &out)
{
  Json json = app_json(app);
  json["version"] = TDM_TOOL_VERSION;
  json["verbs"] = Json::array();
  for (const CLI::App *verb : app.get_subcommands(nullptr))
    json["verbs"].push_back(app_json(*verb));
  write_json(out, json);
}

} // namespace tool
