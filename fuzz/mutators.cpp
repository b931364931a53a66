// libFuzzer's hooks for the targets that read descriptions: three changes of four are those of the
// language, the others its own.
#include <algorithm>
#include <cstring>

#include "description.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

namespace {

std::size_t store(const std::string &text, std::uint8_t *out, std::size_t max_size)
{
  const std::size_t size = std::min(text.size(), max_size);
  text.copy(reinterpret_cast<char *>(out), size);
  return size;
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size,
                                               std::size_t max_size, unsigned int seed)
{
  if (seed % 4 == 0) return LLVMFuzzerMutate(data, size, max_size);
  return store(fuzz::mutate_description(fuzz::text_of(data, size), seed / 4), data, max_size);
}

extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t *one, std::size_t one_size,
                                                 const std::uint8_t *other, std::size_t other_size,
                                                 std::uint8_t *out, std::size_t max_size,
                                                 unsigned int seed)
{
  return store(fuzz::cross_descriptions(fuzz::text_of(one, one_size),
                                        fuzz::text_of(other, other_size), seed),
               out, max_size);
}
