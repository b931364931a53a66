// Files for the inputs that a parse reads: written anew for each run, in memory if possible.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "target.h"

namespace fuzz {

Directory::Directory()
{
  std::string pattern = (::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp");
  pattern += "/tdm_fuzz_XXXXXX";
  const char *made = ::mkdtemp(pattern.data());
  require(made != nullptr, "a directory can be made");
  path_ = pattern;
  // Nothing is found in "../include/".
  require(::chdir(made) == 0, "it can be entered");
}

Directory::~Directory()
{
  clear();
  ::rmdir(path_.c_str());
}

std::string Directory::write(const std::string &name, std::string_view text)
{
  std::string full = path_ + "/" + name;
  const int handle = ::open(full.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  require(handle >= 0, "a file can be made", full);
  require(::write(handle, text.data(), text.size()) == static_cast<ssize_t>(text.size()),
          "it can be written", full);
  ::close(handle);
  names_.push_back(full);
  return full;
}

void Directory::clear()
{
  for (const std::string &name : names_) ::unlink(name.c_str());
  names_.clear();
}

} // namespace fuzz
