// One use of the library from start to end, and what it answered as one number.
#pragma once

#include <cstdint>
#include <string>

#include <tdm_c/tdm.h>

/// A description with something of every kind in it, and one that fails late.
extern const char *const whole_text;
extern const char *const broken_text;

/// Writes the text to a file of its own and gives its name.
std::string written(const char *name, const std::string &text);

/// Everything that is told is folded into this; nothing is allocated.
class Answers {
public:
  void add(std::int64_t number)
  {
    hash_ = (hash_ ^ static_cast<std::uint64_t>(number)) * 0x100000001B3U;
  }
  void add(const char *text)
  {
    add(text != nullptr);
    for (; text != nullptr && *text != '\0'; ++text) add(*text);
  }
  [[nodiscard]] std::uint64_t value() const { return hash_; }

private:
  std::uint64_t hash_ = 0xCBF29CE484222325U;
};

/// Reads, translates, walks and selects; arrays that are null for want of memory are put up with.
void ask(tdm_spec *spec, Answers &answers);

/// Parses the file, and asks if that went well. Between tdm_init and tdm_cleanup.
void parse_and_ask(const char *file, Answers &answers);
