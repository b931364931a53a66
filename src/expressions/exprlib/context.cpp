// Contexts and their strings, error codes, names.
#include <array>
#include <cstdlib>
#include <cstring>

#include "expressions/exprlib/node.h"
#include "expressions/exprlib/pool.h"

namespace {

constexpr uint32_t largest_value_size = UINT16_MAX / 8; // a width in bits is a 16-bit number
constexpr std::size_t pooled_string_size = 64;

constexpr std::array<const char *, 17> error_texts = {
    "no error",
    "internal error",
    "overflow",
    "too big",
    "out of memory",
    "free",
    "unknown operand",
    "unknown type",
    "incompatible types",
    "no value",
    "divide by zero",
    "cannot convert",
    "domain error",
    "fractional saturation error",
    "relocation function evaluation error",
    "evaluation error",
    "not supported",
};

constexpr std::array<const char *, 7> type_names = {"unknown", "void",  "int",   "unsigned int",
                                                    "double",  "fract", "string"};

constexpr std::array<const char *, EXPRLIB_LAST_NAMED + 1> operator_names = {
    "",       "",      "true",  "false",  "abs(",  "+",    "&",     "~",      "/",
    "&&",     "||",    "max(",  "%",      "min(",  "*",    "-",     "!",      "|",
    "<<",     ">>",    ">>",    "-",      "^",     "==",   "!=",    "<=",     ">=",
    ">",      "<",     "",      "(nop)",  "",      "",     "",      "error(", "acos(",
    "asin(",  "atan(", "hcos(", "hsin(",  "htan(", "cos(", "sin(",  "tan(",   "ceil(",
    "floor(", "xpnt(", "log(",  "log10(", "pow(",  "sqt(", "sign(",
};

/// Short strings come from the pools.
char *allocate_characters(std::size_t size)
{
  return static_cast<char *>(size <= pooled_string_size ? exprlib::allocate(size)
                                                        : std::malloc(size));
}

void free_characters(ExprlibString *string)
{
  if (string->characters == nullptr) return;
  const std::size_t size = string->length + 1;
  if (size <= pooled_string_size)
    exprlib::release(string->characters, size);
  else
    std::free(string->characters);
}

} // namespace

int exprlib_make_context(ExprlibContext **context, uint32_t value_size, uint32_t payload_size)
{
  *context = nullptr;
  if (value_size == 0 || value_size > largest_value_size) return 1;
  if (payload_size > largest_value_size) return 1;
  auto payload = static_cast<uint32_t>(sizeof(ExprlibPayload));
  if (payload < value_size) payload = value_size;
  if (payload < payload_size) payload = payload_size;
  if (!exprlib::add_pool(sizeof(ExprlibNode) + payload)) return 1;

  auto *made = static_cast<ExprlibContext *>(std::calloc(1, sizeof(ExprlibContext)));
  if (made == nullptr) return 1;
  made->value_size = value_size;
  made->payload_size = payload;
  made->scratch = static_cast<uint8_t *>(std::calloc(3, payload));
  if (made->scratch == nullptr) {
    std::free(made);
    return 1;
  }
  *context = made;
  return 0;
}

void exprlib_end_context(ExprlibContext *context)
{
  if (context == nullptr) return;
  while (context->strings != nullptr) {
    ExprlibString *string = context->strings;
    context->strings = string->next;
    exprlib::free_string(string);
  }
  std::free(context->scratch);
  std::free(context);
}

int32_t exprlib_error(const ExprlibContext *context)
{
  return context->error;
}

const char *exprlib_error_text(int32_t code)
{
  const bool known = code >= 0 && static_cast<std::size_t>(code) < error_texts.size();
  return known ? error_texts[static_cast<std::size_t>(code)] : "unknown error";
}

const char *exprlib_type_name(ExprlibValueType type)
{
  return static_cast<std::size_t>(type) < type_names.size() ? type_names[type] : "";
}

const char *exprlib_operator_name(int32_t op)
{
  return op >= 0 && op <= EXPRLIB_LAST_NAMED ? operator_names[static_cast<std::size_t>(op)] : "";
}

ExprlibString *exprlib_make_string(ExprlibContext *context)
{
  auto *string = static_cast<ExprlibString *>(exprlib::allocate(sizeof(ExprlibString)));
  if (string == nullptr) {
    context->error = EXPRLIB_OUT_OF_MEMORY;
    return nullptr;
  }
  *string = {context->strings, nullptr, nullptr, 0};
  if (context->strings != nullptr) context->strings->previous = string;
  context->strings = string;
  return string;
}

int exprlib_set_string(ExprlibContext *context, ExprlibString *string, const char *characters,
                       size_t length)
{
  char *copy = allocate_characters(length + 1);
  if (copy == nullptr) {
    context->error = EXPRLIB_OUT_OF_MEMORY;
    return 1;
  }
  if (length != 0) std::memcpy(copy, characters, length);
  copy[length] = '\0';
  free_characters(string);
  string->characters = copy;
  string->length = length;
  return 0;
}

/// Of an element that is no longer on a list.
void exprlib::free_string(ExprlibString *string)
{
  free_characters(string);
  exprlib::release(string, sizeof *string);
}
