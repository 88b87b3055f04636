#include "tools/doctor/elf_symbols.h"

#include <errno.h>
#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <string.h>
#include <unistd.h>

namespace {

std::string name_processor(GElf_Half machine) {
    switch (machine) {
        case EM_AARCH64:
            return "64-bit Arm";
        case EM_ARM:
            return "32-bit Arm";
        case EM_X86_64:
            return "x86-64";
        case EM_386:
            return "x86";
        default:
            return "processor " + std::to_string(machine);
    }
}

void read_symbols(Elf *elf, Elf_Scn *section, const GElf_Shdr &header, elf_symbols *read) {
    Elf_Data *data = elf_getdata(section, nullptr);
    const uint64_t count =
        data != nullptr && header.sh_entsize != 0 ? data->d_size / header.sh_entsize : 0;
    for (uint64_t index = 0; index < count; ++index) {
        GElf_Sym symbol;
        if (gelf_getsym(data, static_cast<int>(index), &symbol) == nullptr ||
            symbol.st_shndx == SHN_UNDEF || GELF_ST_BIND(symbol.st_info) == STB_LOCAL)
            continue;
        const char *name = elf_strptr(elf, header.sh_link, symbol.st_name);
        if (name != nullptr)
            read->defined.insert(name);
    }
}

void read_elf(Elf *elf, elf_symbols *read) {
    GElf_Ehdr header;
    if (elf_kind(elf) != ELF_K_ELF || gelf_getehdr(elf, &header) == nullptr) {
        read->error = "is no library";
        return;
    }
    read->processor = name_processor(header.e_machine);
    read->is_64_bit = header.e_ident[EI_CLASS] == ELFCLASS64;
    read->error = "is cut off, or no library";
    for (Elf_Scn *section = elf_nextscn(elf, nullptr); section != nullptr;
         section = elf_nextscn(elf, section)) {
        GElf_Shdr about;
        if (gelf_getshdr(section, &about) != nullptr && about.sh_type == SHT_DYNSYM) {
            read_symbols(elf, section, about, read);
            read->error.clear();
        }
    }
}

}  // namespace

elf_symbols elf_read(const std::string &path) {
    elf_symbols read;
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        read.is_there = errno != ENOENT;
        read.error = read.is_there ? strerror(errno) : "is not there";
        return read;
    }
    elf_version(EV_CURRENT);
    Elf *elf = elf_begin(fd, ELF_C_READ, nullptr);
    read_elf(elf, &read);
    elf_end(elf);
    close(fd);
    return read;
}
