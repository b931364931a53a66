// What the benchmark programs share: cases that are timed by Google Benchmark or counted under
// callgrind.
//
//     PROGRAM ARGUMENTS...                 times, as Google Benchmark prints them
//     PROGRAM --count ARGUMENTS...         each case once, between marks that callgrind heeds
//
// A case does one kind of thing a number of times, its units; figures are meant for one unit. With
// --count its line is `<name> <units>`, and callgrind (--instr-atstart=no) writes a part of its
// output under that name.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <tdm_c/tdm.h>

namespace bench {

struct Case {
  std::string name;
  std::size_t units;
  std::function<void()> work;
};

/// What the command line asks for: takes the own option and those of Google Benchmark out.
class Program {
public:
  Program(int argc, char **argv);
  [[nodiscard]] const std::vector<std::string> &arguments() const { return arguments_; }
  void run(const std::vector<Case> &cases) const;

private:
  bool count_ = false;
  std::vector<std::string> arguments_;
};

/// A description of one file, from tdm_init() to tdm_cleanup(). Ends the program if it is wrong.
class Description {
public:
  explicit Description(const std::string &path);
  ~Description();
  Description(const Description &) = delete;
  Description &operator=(const Description &) = delete;

  [[nodiscard]] const tdm_spec *spec() const { return spec_; }
  [[nodiscard]] std::vector<tdm_memory *> memories() const;
  [[nodiscard]] std::vector<tdm_core *> cores() const;   ///< of all processors
  [[nodiscard]] std::vector<tdm_space *> spaces() const; ///< of all cores

private:
  tdm_spec *spec_;
};

/// The items of an array of pointers, which goes back to the library.
template <class T> std::vector<T *> taken(tdm_arr *array)
{
  T **items = static_cast<T **>(array->items);
  std::vector<T *> all(items, items + array->count);
  tdm_arr_del(array);
  return all;
}

/// About `count` items, spread evenly.
template <class T> std::vector<T> sample(const std::vector<T> &all, std::size_t count)
{
  if (all.size() <= count) return all;
  std::vector<T> some;
  for (std::size_t i = 0; i < count; ++i) some.push_back(all[i * all.size() / count]);
  return some;
}

/// Ends the program with the words unless the condition holds.
void require(bool condition, std::string_view words);

} // namespace bench
