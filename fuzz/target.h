// What the fuzz targets share. A target is one function, LLVMFuzzerTestOneInput, as libFuzzer and
// AFL++ call it; replay.cpp calls it for files where there is neither. A property that does not
// hold ends the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz {

inline void require(bool holds, const char *what, const std::string &details = {})
{
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n%s\n", what, details.c_str());
  std::abort();
}

inline std::string_view text_of(const std::uint8_t *data, std::size_t size)
{
  return {reinterpret_cast<const char *>(data), size};
}

/// Numbers out of the input, from its beginning; zeros when it is used up.
class Bytes {
public:
  Bytes(const std::uint8_t *data, std::size_t size) : data_(data), left_(size) {}

  [[nodiscard]] bool empty() const { return left_ == 0; }
  std::uint8_t byte()
  {
    if (left_ == 0) return 0;
    --left_;
    return *data_++;
  }
  /// From low to high, both included, out of one byte.
  int pick(int low, int high) { return low + byte() % (high - low + 1); }
  bool flag() { return (byte() & 1) != 0; }
  /// A number of any size, of `bytes` bytes.
  std::uint64_t word(int bytes)
  {
    std::uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value = value << 8 | byte();
    return value;
  }
  /// A number that likes to be small, or at an end of the 64 bits.
  std::int64_t number()
  {
    constexpr std::int64_t ends[] = {INT64_MAX,       INT64_MIN, -1,      0x7FFFFFFF,
                                     -0x7FFFFFFF - 1, 0x8000,    0x10000, 0x100000000};
    const int form = pick(0, 15);
    if (form < 8) return form + pick(0, 15);
    if (form < 11)
      return static_cast<std::int64_t>(static_cast<std::uint64_t>(ends[pick(0, 7)]) +
                                       static_cast<std::uint64_t>(pick(-1, 1)));
    return static_cast<std::int64_t>(word(form < 14 ? 2 : 8));
  }

private:
  const std::uint8_t *data_;
  std::size_t left_;
};

/// A directory of this process on a file system in memory, where there is one.
class Directory {
public:
  Directory();
  Directory(const Directory &) = delete;
  Directory &operator=(const Directory &) = delete;
  ~Directory();

  /// Writes the file and gives its absolute name.
  std::string write(const std::string &name, std::string_view text);
  /// Removes the files that were written.
  void clear();
  [[nodiscard]] const std::string &path() const { return path_; }

private:
  std::string path_;
  std::vector<std::string> names_;
};

} // namespace fuzz
