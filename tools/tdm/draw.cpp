// draw: the memory map as a picture.
#include <fstream>
#include <stdexcept>

#include "picture/memory_chart.h"
#include "picture/picture.h"
#include "picture/svg.h"
#include "verbs.h"

namespace tool {

int draw(const Options &options, const Session &session, std::ostream &out)
{
  const picture::Picture drawn =
      picture::make_picture(picture::read_chart(session, options.processor));
  const auto write = [&](std::ostream &to) {
    options.html ? picture::write_page(to, drawn) : picture::write_svg(to, drawn);
  };
  if (options.output == "-") {
    write(out);
    return exit_ok;
  }
  std::ofstream file(options.output, std::ios::binary);
  if (file) write(file);
  file.close();
  if (!file) throw std::runtime_error("cannot write \"" + options.output + "\"");
  return exit_ok;
}

} // namespace tool
