// The texts of the caller's sections.
#include "layout/section.h"

TDMSection::~TDMSection() = default;

TDMSectionWrapper::TDMSectionWrapper(void *user, const tdm_section_functions *functions)
    : user_(user), functions_(functions), name_(text(functions->get_name))
{
}

std::string TDMSectionWrapper::text(const char *(*function)(void *)) const
{
  const char *result = function != nullptr ? function(user_) : nullptr;
  return result != nullptr ? result : "";
}
