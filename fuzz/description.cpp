// The generator walks the table of productions; the mutator cuts a text into tokens and changes
// them, or statements as a whole, knowing of the language only braces, semicolons and the table.
#include "description.h"

#include <random>

#include "grammar.h"
#include "language/token_types.h"

namespace fuzz {

namespace {

class Random {
public:
  explicit Random(std::uint32_t seed) : engine_(seed) {}

  /// Below the number, which is above 0.
  std::size_t below(std::size_t number) { return engine_() % number; }
  bool once_in(std::size_t times) { return below(times) == 0; }

private:
  std::minstd_rand engine_;
};

class Generator {
public:
  explicit Generator(Random &random) : random_(random) {}

  std::string make(std::string_view name)
  {
    std::string out;
    expand(name, 0, out);
    return out;
  }

private:
  static constexpr int deep = 12;
  static constexpr std::size_t long_text = 6000;

  void expand(std::string_view name, int depth, std::string &out)
  {
    std::vector<const char *> choices;
    for (const Production &row : grammar)
      if (name == row.name) choices.push_back(row.text);
    require(!choices.empty(), "a production is there", std::string(name));
    const bool out_soon = depth > deep || out.size() > long_text;
    write(choices[out_soon ? 0 : random_.below(choices.size())], depth + 1, out);
  }

  void write(std::string_view text, int depth, std::string &out)
  {
    while (!text.empty()) {
      const std::size_t sign = std::min(text.find('$'), text.size());
      out += text.substr(0, sign);
      text.remove_prefix(sign);
      if (text.empty()) break;
      std::size_t end = 1;
      while (end < text.size() && (std::isalnum(static_cast<unsigned char>(text[end])) != 0)) ++end;
      const std::string_view name = text.substr(1, end - 1);
      const char form = end < text.size() ? text[end] : ' ';
      std::size_t times = 1;
      if (form == '?') times = random_.below(2);
      if (form == '*') times = random_.below(depth > deep ? 1 : 5);
      if (form == '+') times = 1 + random_.below(4);
      text.remove_prefix(end + (form == '?' || form == '*' || form == '+' ? 1 : 0));
      while (times-- > 0) expand(name, depth, out);
    }
  }

  Random &random_;
};

/// Words, numbers, strings, directives as lines, single characters; blanks go with what is before
/// them.
std::vector<std::string> tokens_of(std::string_view text)
{
  const auto is_word = [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
  };
  std::vector<std::string> tokens;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    if (is_word(text[at]))
      while (end < text.size() && is_word(text[end])) ++end;
    else if (text[at] == '"')
      end = std::min(text.find_first_of("\"\n", at + 1), text.size() - 1) + 1;
    else if (text[at] == '#' || text.substr(at, 2) == "//")
      end = std::min(text.find('\n', at), text.size());
    while (end < text.size() && (text[end] == ' ' || text[end] == '\n')) ++end;
    tokens.emplace_back(text.substr(at, end - at));
    at = end;
  }
  return tokens;
}

std::string text_of(const std::vector<std::string> &tokens)
{
  std::string text;
  for (const std::string &token : tokens) text += token;
  return text;
}

/// From a token to the end of the statement or block that begins there.
std::size_t statement_end(const std::vector<std::string> &tokens, std::size_t at)
{
  int depth = 0;
  for (; at < tokens.size(); ++at) {
    const char c = tokens[at].front();
    if (c == '{' || c == '(') ++depth;
    if (c == '}' || c == ')') --depth;
    if ((depth <= 0 && (c == ';' || c == '}')) || depth < 0) return at + 1;
  }
  return at;
}

/// The beginning of a statement near the token.
std::size_t statement_begin(const std::vector<std::string> &tokens, std::size_t at)
{
  while (at > 0) {
    const char c = tokens[at - 1].front();
    if (c == ';' || c == '{' || c == '}') break;
    --at;
  }
  return at;
}

class Mutator {
public:
  Mutator(std::string_view text, std::uint32_t seed) : random_(seed), tokens_(tokens_of(text)) {}

  std::string change()
  {
    if (tokens_.empty() || random_.once_in(50)) return Generator(random_).make("file");
    do {
      one_change();
    } while (!tokens_.empty() && random_.once_in(2));
    return text_of(tokens_);
  }

  std::string cross(std::string_view other)
  {
    const std::vector<std::string> others = tokens_of(other);
    if (tokens_.empty() || others.empty()) return text_of(tokens_) + std::string(other);
    const std::size_t from = statement_begin(others, random_.below(others.size()));
    const std::size_t to = statement_end(others, from);
    const std::size_t at = statement_begin(tokens_, random_.below(tokens_.size()));
    insert(at, {others.begin() + difference(from), others.begin() + difference(to)});
    return text_of(tokens_);
  }

private:
  static std::ptrdiff_t difference(std::size_t n) { return static_cast<std::ptrdiff_t>(n); }

  std::size_t any() { return random_.below(tokens_.size()); }

  void insert(std::size_t at, const std::vector<std::string> &added)
  {
    tokens_.insert(tokens_.begin() + difference(at), added.begin(), added.end());
  }
  void insert_text(std::size_t at, const std::string &text) { insert(at, tokens_of(text)); }

  /// A token of the text that is of the same kind.
  std::string another(const std::string &token)
  {
    const auto is_name = [](const std::string &t) {
      return std::isalpha(static_cast<unsigned char>(t.front())) != 0;
    };
    for (int i = 0; i < 20; ++i) {
      const std::string &candidate = tokens_[any()];
      if (is_name(candidate) == is_name(token)) return candidate;
    }
    return token;
  }

  std::string keyword()
  {
    const auto first = static_cast<std::size_t>(TDMTokenTypes::KEY_memory);
    const std::size_t type = first + random_.below(TDMTokenTypes::NUMBER_OF_TYPES - first);
    const std::string quoted = tdm::token_names()[type];
    return quoted.substr(1, quoted.size() - 2) + " ";
  }

  void one_change()
  {
    const std::size_t at = any();
    std::string &token = tokens_[at];
    switch (random_.below(12)) {
    case 0: // a statement less
    {
      const std::size_t from = statement_begin(tokens_, at);
      tokens_.erase(tokens_.begin() + difference(from),
                    tokens_.begin() + difference(statement_end(tokens_, from)));
      break;
    }
    case 1: // a statement twice, or elsewhere again
    {
      const std::size_t from = statement_begin(tokens_, at);
      const std::size_t to = statement_end(tokens_, from);
      const std::vector<std::string> copy(tokens_.begin() + difference(from),
                                          tokens_.begin() + difference(to));
      insert(random_.once_in(2) ? from : statement_begin(tokens_, any()), copy);
      break;
    }
    case 2:
    case 3: // another number, or an expression, in the place of a number
      for (std::size_t i = at; i < tokens_.size(); ++i)
        if (std::isdigit(static_cast<unsigned char>(tokens_[i].front())) != 0) {
          tokens_[i] = Generator(random_).make(random_.once_in(4) ? "expr" : "num") + " ";
          break;
        }
      break;
    case 4:
    case 5:
      token = another(token);
      break;
    case 6:
      token = keyword();
      break;
    case 7: // a statement of some kind
    {
      constexpr const char *kinds[] = {"stmt",    "spaceitem", "derivitem", "top",
                                       "memitem", "busitem",   "coreitem",  "setupitem",
                                       "extra",   "stmt",      "space",     "defs"};
      insert_text(statement_begin(tokens_, at),
                  Generator(random_).make(kinds[random_.below(std::size(kinds))]));
      break;
    }
    case 8: // an item of a list behind an opening parenthesis, or a comma
    {
      constexpr const char *kinds[] = {"mapitem",      "groupitem",  "sectionitem", "stackitem",
                                       "reserveditem", "vectoritem", "bankitem",    "lexpr"};
      for (std::size_t i = at; i < tokens_.size(); ++i)
        if (tokens_[i].front() == ')') {
          std::string item = Generator(random_).make(kinds[random_.below(std::size(kinds))]);
          if (item.front() != ',') item.insert(0, ", ");
          insert_text(i, item);
          break;
        }
      break;
    }
    case 9:
      tokens_.erase(tokens_.begin() + difference(at));
      break;
    case 10:
      insert(at, std::vector<std::string>{tokens_[any()]});
      break;
    default:
      std::swap(token, tokens_[any()]);
    }
  }

  Random random_;
  std::vector<std::string> tokens_;
};

} // namespace

std::string generate_description(std::uint32_t seed)
{
  Random random(seed);
  return Generator(random).make("file");
}

std::string mutate_description(std::string_view text, std::uint32_t seed)
{
  return Mutator(text, seed).change();
}

std::string cross_descriptions(std::string_view one, std::string_view other, std::uint32_t seed)
{
  return Mutator(one, seed).cross(other);
}

} // namespace fuzz
