// The names that an expression of a template can use: its parameters, bound to the expression
// records that an instance was given for them.
//
// There is one scope for each instance of a template, and scopes aren't chained: a template sees
// its own parameters only. Records are bound as they are and read when a name is used, so that one
// parameter's default may refer to another, in any order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/name_table.h"
#include "common/source_location.h"
#include "language/basic_records.h"
#include "language/expr_records.h"

namespace tdm {

/// The names under which a scope has the start and the size of a memory, before the memory's name.
inline constexpr std::string_view memory_address_prefix = "__mem_addr:";
inline constexpr std::string_view memory_size_prefix = "__mem_size:";

/// The most terms that one translation or substitution may make: parameters that double each other
/// grow without bound from a short text.
inline constexpr std::size_t term_limit = 1'000'000;

/// What `addressof` and `sizeof` of a memory mean in the place of a scope.
class MemoryReferences {
public:
  virtual std::optional<std::int64_t> memory_address(const std::string &memory) = 0;
  virtual std::optional<std::int64_t> memory_size(const std::string &memory) = 0;

protected:
  ~MemoryReferences() = default;
};

/// What a parameter is to be bound to: a record of the text, which lives as long as any scope of
/// the parse, or one that has been made for the purpose. Places in it are none of the reader's: an
/// argument stands for its value, wherever it was written.
struct Argument {
  const TDMFileExpression *record;
  ExpressionPtr owned; ///< the record if it was made, else null
};

using Arguments = PooledVector<Argument>;

class ArgumentScope {
public:
  /// The scope of the file level, without names, until bind().
  ArgumentScope() = default;

  /// The names of another scope, and memories. Refers to both; a memory is asked for when an
  /// expression uses it, and once only.
  ArgumentScope(const ArgumentScope &parameters, MemoryReferences &memories)
      : parameters_(&parameters), memories_(&memories)
  {
  }

  ArgumentScope(ArgumentScope &&) = default;
  ArgumentScope &operator=(ArgumentScope &&) = default;

  /// Binds each parameter to its argument, or to its default; what was bound before is gone. Refers
  /// to the parameters and to the records of the arguments. Throws TDMTooManyArgumentsException *
  /// or TDMTooFewArgumentsException *.
  void bind(const FileParameters &parameters, Arguments arguments);

  /// Binds a single name.
  void bind(Text name, ExpressionPtr record);

  /// The same names, bound to copies of all records.
  [[nodiscard]] ArgumentScope copy() const;

  /// The argument list for another template: each variable replaced by the record that this scope
  /// has for it, which isn't rewritten in turn. Refers to the arguments and to this scope. A
  /// variable without a record is reported at its key `name`, else at the place.
  [[nodiscard]] Arguments substitute(const ExpressionList &arguments,
                                     const TDMSourceLocation &place) const;

  /// The names that bind() got as a list, in their order, each once.
  [[nodiscard]] PooledVector<Text> parameter_names() const;

  struct Binding {
    const TDMFileExpression *record = nullptr;
    ExpressionPtr owned; ///< the record if the scope owns it, else null
    /// The translation that is inside the record at present; see translate.cpp.
    mutable std::uint64_t busy_in = 0;
    /// The terms of the record, 0 while nobody has counted them.
    mutable std::size_t terms = 0;
  };

  /// What the name is bound to, or null.
  [[nodiscard]] const Binding *find(Text name) const;

private:
  struct Parameter {
    Parameter(Text name_, Binding binding_) : name(name_), binding(std::move(binding_)) {}

    Text name;
    Binding binding;
  };
  struct NameAt {
    const PooledVector<Parameter> &parameters;

    Text operator()(uint32_t place) const { return parameters[place].name; }
  };

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const
    {
      return std::hash<std::string_view>{}(text);
    }
  };
  struct Bindings : RecordMemory {
    std::unordered_map<Text, Binding, Hash, std::equal_to<>,
                       PoolAllocator<std::pair<const Text, Binding>>>
        by_name;
  };

  void append(Text name, Binding binding);
  /// Whether no parameter before this one has its name.
  [[nodiscard]] bool is_first(const Parameter &parameter) const
  {
    return &bound_[bound_names_.find(parameter.name, NameAt{bound_})] == &parameter;
  }
  const Binding *find_memory(Text name) const;
  Binding &single(Text name) const;

  PooledVector<Parameter> bound_;
  NameTable bound_names_;
  /// Single names, which come before the parameters; null as long as there are none. Memories are
  /// added as they are asked for.
  mutable std::unique_ptr<Bindings> single_;
  const ArgumentScope *parameters_ = nullptr;
  MemoryReferences *memories_ = nullptr;
};

/// The arguments as they were written.
[[nodiscard]] Arguments arguments_of(const ExpressionList &list);

/// Reports a name that a scope has no record for.
[[noreturn]] void report_unbound(std::string_view name, const TDMSourceLocation &location);

/// Reports an expression of more than term_limit terms.
[[noreturn]] void report_too_large(const TDMSourceLocation &location);

} // namespace tdm
