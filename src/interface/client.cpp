// The way of C++ clients into the model. Failures pass: such a client catches them itself.
#include "interface/client.h"

#include "model/space.h"

void tdm_walk_space(TDMSpace &space, TDMSpaceWalker &walker)
{
  space.walk(walker);
}
