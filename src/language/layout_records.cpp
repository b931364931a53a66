// The letters of attribute words.
#include "language/layout_records.h"

#include "common/failures.h"

namespace tdm {

AttributeSet attribute_set(std::string_view word)
{
  AttributeSet set;
  for (const char letter : word) {
    switch (letter) {
    case 'r':
      set.r = true;
      break;
    case 'w':
      set.w = true;
      break;
    case 'x':
      set.x = true;
      break;
    case 'i':
      set.i = true;
      break;
    case 's':
      set.s = true;
      break;
    case 'b':
      set.b = true;
      break;
    case 'p':
      set.p = true;
      break;
    case 'f':
    case 'g':
      break; // known, but no flags of ours
    default:
      throw new TDMFileSyntaxException(std::string("illegal section attribute: ") + letter);
    }
  }
  return set;
}

} // namespace tdm
