// The texts of the caller's sections.
#include "layout/section.h"

#include "layout/kept_sections.h"

TDMSection::~TDMSection()
{
  tdm::forget_sections();
}

TDMSectionWrapper::TDMSectionWrapper(void *user, const tdm_section_functions *functions)
    : user_(user), functions_(functions), name_(text(functions->get_name))
{
  tdm::forget_sections();
}

std::string TDMSectionWrapper::text(const char *(*function)(void *)) const
{
  const char *result = function != nullptr ? function(user_) : nullptr;
  return result != nullptr ? result : "";
}
