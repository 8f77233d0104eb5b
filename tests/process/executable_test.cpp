// What kind of file the program is: which libraries it needs, and whether it has the guards with
// which it is built.
#include "support/files.h"

#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace pellum::test {

namespace {

#if defined(__LP64__)

// A file in the format of 64-bit Linux.
class Executable {
public:
    explicit Executable(const std::filesystem::path& path) : bytes_(readFile(path)) {
        header_ = at<Elf64_Ehdr>(0);
        for (unsigned i = 0; i < header_.e_phnum; ++i) {
            segments_.push_back(at<Elf64_Phdr>(header_.e_phoff + i * header_.e_phentsize));
        }
        for (const Elf64_Phdr& segment : segments_) {
            if (segment.p_type != PT_DYNAMIC) continue;
            for (Elf64_Off place = segment.p_offset;; place += sizeof(Elf64_Dyn)) {
                dynamic_.push_back(at<Elf64_Dyn>(place));
                if (dynamic_.back().d_tag == DT_NULL) break;
            }
        }
    }

    bool hasMagic() const { return bytes_.starts_with(ELFMAG); }
    bool isPositionIndependent() const { return header_.e_type == ET_DYN; }

    const Elf64_Phdr* segment(Elf64_Word type) const {
        for (const Elf64_Phdr& segment : segments_) {
            if (segment.p_type == type) return &segment;
        }
        return nullptr;
    }

    // The values of all entries with this tag.
    std::vector<Elf64_Xword> entries(Elf64_Sxword tag) const {
        std::vector<Elf64_Xword> values;
        for (const Elf64_Dyn& entry : dynamic_) {
            if (entry.d_tag == tag) values.push_back(entry.d_un.d_val);
        }
        return values;
    }

    std::vector<std::string> neededLibraries() const {
        std::vector<std::string> names;
        for (const Elf64_Xword name : entries(DT_NEEDED)) {
            names.push_back(bytes_.data() + fileOffset(entries(DT_STRTAB).at(0)) + name);
        }
        return names;
    }

private:
    template <typename T>
    T at(Elf64_Off place) const {
        T value;
        if (place > bytes_.size() || bytes_.size() - place < sizeof value) {
            throw std::runtime_error("the file ends too early");
        }
        std::memcpy(&value, bytes_.data() + place, sizeof value);
        return value;
    }

    // Of a place in memory.
    Elf64_Off fileOffset(Elf64_Addr address) const {
        for (const Elf64_Phdr& segment : segments_) {
            if (segment.p_type == PT_LOAD && address >= segment.p_vaddr &&
                address - segment.p_vaddr < segment.p_filesz) {
                return address - segment.p_vaddr + segment.p_offset;
            }
        }
        throw std::runtime_error("no segment holds this address");
    }

    std::string bytes_;
    Elf64_Ehdr header_;
    std::vector<Elf64_Phdr> segments_;
    std::vector<Elf64_Dyn> dynamic_;
};

#ifdef PELLUM_HARDEN
TEST(Executable, IsGuarded) {
    const Executable program(PELLUM_EXECUTABLE);
    ASSERT_TRUE(program.hasMagic());
    EXPECT_TRUE(program.isPositionIndependent());
    EXPECT_NE(program.segment(PT_GNU_RELRO), nullptr);
    ASSERT_NE(program.segment(PT_GNU_STACK), nullptr);
    EXPECT_EQ(program.segment(PT_GNU_STACK)->p_flags & PF_X, 0U);
    ASSERT_EQ(program.entries(DT_FLAGS_1).size(), 1U);
    EXPECT_NE(program.entries(DT_FLAGS_1)[0] & DF_1_NOW, 0U);
    EXPECT_EQ(program.entries(DT_TEXTREL).size(), 0U);
}
#endif

TEST(Executable, LooksForLibrariesWhereTheSystemDoes) {
    const Executable program(PELLUM_EXECUTABLE);
    EXPECT_EQ(program.entries(DT_RPATH).size() + program.entries(DT_RUNPATH).size(), 0U);
}

#ifdef PELLUM_STATIC
TEST(Executable, NeedsNoLibrary) {
    const Executable program(PELLUM_EXECUTABLE);
    EXPECT_EQ(program.segment(PT_INTERP), nullptr);
    EXPECT_EQ(program.neededLibraries(), std::vector<std::string>());
}
#elif defined(PELLUM_IS_FOR_USE) && defined(__GNUC__) && !defined(__clang__)
// Each further one would cost time at the start of every program.
TEST(Executable, NeedsTheLibrariesOfCAlone) {
    for (const std::string& name : Executable(PELLUM_EXECUTABLE).neededLibraries()) {
        EXPECT_TRUE(name.starts_with("libc.") || name.starts_with("libm.") ||
                    name.starts_with("libdl.") || name.starts_with("ld-linux"))
            << name;
    }
}
#endif

#endif

}  // namespace

}  // namespace pellum::test
