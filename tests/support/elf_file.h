// What a shared library tells the dynamic linker.
#ifndef VEK_TESTS_SUPPORT_ELF_FILE_H
#define VEK_TESTS_SUPPORT_ELF_FILE_H

#include <elf.h>

#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace support {

class ElfFile {
public:
    explicit ElfFile(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        bytes_.assign(std::istreambuf_iterator<char>(file), {});
        header_ = at<Elf64_Ehdr>(0);
        if (std::memcmp(header_.e_ident, ELFMAG, SELFMAG) != 0 || header_.e_ident[EI_CLASS] != ELFCLASS64)
            throw std::runtime_error(path + " is no 64-bit ELF file");
        readSymbols(section(SHT_DYNSYM));
        readDynamic(section(SHT_DYNAMIC));
    }

    const std::set<std::string>& functions() const { return functions_; }        // defined here, visible outside
    const std::set<std::string>& otherSymbols() const { return otherSymbols_; }  // likewise, but no functions
    const std::set<std::string>& needed() const { return needed_; }
    const std::string& soname() const { return soname_; }

private:
    template <typename T>
    T at(size_t offset) const
    {
        if (offset + sizeof(T) > bytes_.size())
            throw std::runtime_error("ELF file too short");
        T value;
        std::memcpy(&value, bytes_.data() + offset, sizeof value);
        return value;
    }
    Elf64_Shdr sectionAt(size_t index) const { return at<Elf64_Shdr>(header_.e_shoff + index * header_.e_shentsize); }
    Elf64_Shdr section(uint32_t type) const
    {
        for (size_t i = 0; i < header_.e_shnum; ++i)
            if (sectionAt(i).sh_type == type)
                return sectionAt(i);
        throw std::runtime_error("ELF section missing");
    }
    std::string text(const Elf64_Shdr& user, size_t offset) const
    {
        return std::string(bytes_.data() + sectionAt(user.sh_link).sh_offset + offset);
    }
    void readSymbols(const Elf64_Shdr& table)
    {
        for (size_t i = 0; i < table.sh_size / sizeof(Elf64_Sym); ++i) {
            const auto symbol = at<Elf64_Sym>(table.sh_offset + i * sizeof(Elf64_Sym));
            if (symbol.st_shndx == SHN_UNDEF || ELF64_ST_BIND(symbol.st_info) == STB_LOCAL)
                continue;
            const bool isFunction = ELF64_ST_TYPE(symbol.st_info) == STT_FUNC;
            (isFunction ? functions_ : otherSymbols_).insert(text(table, symbol.st_name));
        }
    }
    void readDynamic(const Elf64_Shdr& table)
    {
        for (size_t i = 0; i < table.sh_size / sizeof(Elf64_Dyn); ++i) {
            const auto entry = at<Elf64_Dyn>(table.sh_offset + i * sizeof(Elf64_Dyn));
            if (entry.d_tag == DT_NEEDED)
                needed_.insert(text(table, entry.d_un.d_val));
            if (entry.d_tag == DT_SONAME)
                soname_ = text(table, entry.d_un.d_val);
        }
    }

    std::vector<char> bytes_;
    Elf64_Ehdr header_;
    std::set<std::string> functions_;
    std::set<std::string> otherSymbols_;
    std::set<std::string> needed_;
    std::string soname_;
};

}  // namespace support

#endif
