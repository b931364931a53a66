// A picture as SVG, or as a page of HTML around it. The colours are here: light or dark, as the
// reader prefers.
#pragma once

#include <ostream>

#include "picture.h"

namespace tool::picture {

void write_svg(std::ostream &out, const Picture &picture);
void write_page(std::ostream &out, const Picture &picture);

} // namespace tool::picture
