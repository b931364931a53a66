// The failure of address arithmetic, kept out of the inlined operations.
#include "mapping/address_value.h"

void AddressValue::throw_mau_exception()
{
  throw new MauException;
}
