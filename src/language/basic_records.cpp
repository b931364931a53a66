// The setters of stacks and heaps, through which the parser treats both alike.
#include "language/basic_records.h"

#include "common/failures.h"

void TDMFileStackDef::set_minimal_size(tdm::ExpressionPtr value)
{
  if (minimalSize)
    throw new TDMFileSyntaxException("Tried to set minimal size of stack " + name.value_or("") +
                                     " twice");
  minimalSize = std::move(value);
}

void TDMFileStackDef::set_grow_direction(int direction)
{
  if (growDirection != tdm::kDirectionNotSet)
    throw new TDMFileSyntaxException("Tried to set grow direction of stack " + name.value_or("") +
                                     " twice");
  growDirection = direction;
}

void TDMFileStackDef::set_alignment(tdm::ExpressionPtr value)
{
  if (alignment)
    throw new TDMFileSyntaxException("Tried to set alignment of stack " + name.value_or("") +
                                     " twice");
  alignment = std::move(value);
}

void TDMFileStackDef::set_fixed()
{
  fixed = true;
}

void TDMFileStackDef::set_id(tdm::ExpressionPtr value)
{
  id = std::move(value);
}

void TDMFileHeapDef::set_minimal_size(tdm::ExpressionPtr value)
{
  minimalSize = std::move(value);
}

void TDMFileHeapDef::set_grow_direction(int direction)
{
  growDirection = direction;
}

void TDMFileHeapDef::set_alignment(tdm::ExpressionPtr value)
{
  alignment = std::move(value);
}

void TDMFileHeapDef::set_fixed()
{
  fixed = true;
}

// The language lets a heap have an id, and nothing asks for it.
void TDMFileHeapDef::set_id(tdm::ExpressionPtr) {}
