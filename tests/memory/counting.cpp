#include "counting.h"

#include <cstdlib>
#include <new>

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
void *__real_realloc(void *memory, std::size_t size);
void __real_free(void *memory);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
void *__wrap_realloc(void *memory, std::size_t size);
void __wrap_free(void *memory);
}

namespace {

struct State {
  std::size_t live = 0;
  std::size_t requests = 0;
  std::size_t from = 0;
  counting::Refuse which = counting::Refuse::none;
  bool refused = false;
};
State state;

bool is_refused()
{
  const std::size_t number = state.requests++;
  const bool is = (state.which == counting::Refuse::one && number == state.from) ||
                  (state.which == counting::Refuse::all_behind && number >= state.from);
  state.refused |= is;
  return is;
}

void *counted(void *memory)
{
  if (memory != nullptr) ++state.live;
  return memory;
}

} // namespace

std::size_t counting::live()
{
  return state.live;
}

std::size_t counting::requests()
{
  return state.requests;
}

void counting::refuse(Refuse which, std::size_t number)
{
  state.from = state.requests + number;
  state.which = which;
  if (which != Refuse::none) state.refused = false;
}

bool counting::refused()
{
  return state.refused;
}

void *__wrap_malloc(std::size_t size)
{
  return is_refused() ? nullptr : counted(__real_malloc(size));
}

void *__wrap_calloc(std::size_t count, std::size_t size)
{
  return is_refused() ? nullptr : counted(__real_calloc(count, size));
}

void *__wrap_realloc(void *memory, std::size_t size)
{
  if (is_refused()) return nullptr;
  void *moved = __real_realloc(memory, size);
  return memory == nullptr ? counted(moved) : moved;
}

void __wrap_free(void *memory)
{
  if (memory != nullptr) --state.live;
  __real_free(memory);
}

void *operator new(std::size_t size)
{
  if (!is_refused())
    if (void *memory = counted(__real_malloc(size == 0 ? 1 : size))) return memory;
  throw std::bad_alloc();
}

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
  return is_refused() ? nullptr : counted(__real_malloc(size == 0 ? 1 : size));
}

void *operator new(std::size_t size, std::align_val_t alignment)
{
  if (!is_refused())
    if (void *memory = counted(std::aligned_alloc(static_cast<std::size_t>(alignment), size)))
      return memory;
  throw std::bad_alloc();
}

void operator delete(void *memory, std::align_val_t) noexcept
{
  __wrap_free(memory);
}

void operator delete(void *memory) noexcept
{
  __wrap_free(memory);
}

void operator delete(void *memory, std::size_t) noexcept
{
  __wrap_free(memory);
}
