/*
 * Object files: every section that takes up memory becomes a piece. Its flags and its type give the
 * attributes that a layout selects by; for what is neither initialised nor cleared, ELF has no
 * flag, and the name decides, as is the custom.
 */
#define _POSIX_C_SOURCE 200809L

#include "place.h"

#include <errno.h>
#include <fcntl.h>
#include <gelf.h>
#include <string.h>
#include <unistd.h>

static unsigned attributes_of(const GElf_Shdr *header, const char *name)
{
  unsigned attributes = 0;
  if (header->sh_flags & SHF_WRITE) attributes |= writable;
  if (header->sh_flags & SHF_EXECINSTR) attributes |= executable;
  if (header->sh_type != SHT_NOBITS) return attributes | initialised;
  return attributes | (strncmp(name, ".noinit", 7) == 0 ? scratch : blank);
}

/* Notes are for those who load programs on a host. */
static void read_section(linker *l, const char *path, const char *object, const GElf_Shdr *header,
                         const char *name)
{
  const uint64_t limit = INT64_MAX / 64;
  if (!(header->sh_flags & SHF_ALLOC) || header->sh_type == SHT_NOTE || header->sh_size == 0)
    return;
  if (header->sh_size > limit || header->sh_addralign > limit) {
    fail(l, "%s: section %s is too large", path, name);
    return;
  }
  add_section(l, name, object, attributes_of(header, name), (int64_t)header->sh_size * 8,
              header->sh_addralign > 1 ? (int64_t)header->sh_addralign * 8 : 8);
}

static void read_sections(linker *l, const char *path, Elf *elf)
{
  const char *slash = strrchr(path, '/');
  Elf_Scn *section = NULL;
  GElf_Ehdr file;
  GElf_Shdr header;
  size_t names;
  if (elf_kind(elf) != ELF_K_ELF || gelf_getehdr(elf, &file) == NULL || file.e_type != ET_REL) {
    fail(l, "%s: is no ELF object file", path);
    return;
  }
  if (elf_getshdrstrndx(elf, &names) != 0 || elf_nextscn(elf, NULL) == NULL) {
    fail(l, "%s: the table of its sections is damaged", path);
    return;
  }
  while (!l->failed && (section = elf_nextscn(elf, section)) != NULL) {
    const char *name =
        gelf_getshdr(section, &header) != NULL ? elf_strptr(elf, names, header.sh_name) : NULL;
    if (name == NULL)
      fail(l, "%s: %s", path, elf_errmsg(-1));
    else
      read_section(l, path, slash != NULL ? slash + 1 : path, &header, name);
  }
}

void read_object(linker *l, const char *path)
{
  const int file = open(path, O_RDONLY);
  Elf *elf;
  if (file < 0) {
    fail(l, "%s: %s", path, strerror(errno));
    return;
  }
  elf_version(EV_CURRENT);
  elf = elf_begin(file, ELF_C_READ, NULL);
  read_sections(l, path, elf);
  elf_end(elf);
  close(file);
}
