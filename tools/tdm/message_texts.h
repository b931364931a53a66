// What the messages of the preprocessor mean: the words are the library's, the examples ours.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

/// A text is the contents of `example.tdm`. Where it begins with `$`, that line is the command to
/// run; `--- NAME` begins a further file.
struct MessageExample {
  int number;
  const char *provokes;
  const char *mended;
};

struct MessageText {
  std::string number; ///< "E948"
  const char *severity;
  std::string title;             ///< "..." stands for what the message fills in
  std::string meaning;           ///< may be empty
  const MessageExample *example; ///< null where no description can provoke it
};

/// By number, ascending.
[[nodiscard]] std::vector<MessageText> message_texts();

/// By "E948", "e948" or "948"; nothing if there is no such message.
[[nodiscard]] std::optional<MessageText> message_text(std::string_view number);

/// Null if there is none.
[[nodiscard]] const MessageExample *message_example(int number);

} // namespace tool
