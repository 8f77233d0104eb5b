// The Debian package that "cpack" makes of this build, unpacked and looked at. script/package tries
// it more thoroughly, in a system of its own.
#include "process/installing.h"
#include "support/files.h"
#include "support/process.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace pellum::test {

namespace {

bool isInstalled(const char* command) { return runCommand({command, "--version"}).status == 0; }

// The names of the package, made of those of an ordinary installation below "usr".
std::set<fs::path> inDebiansWay(const std::set<fs::path>& installed) {
    std::set<fs::path> names = {"usr/share/doc/pellum/changelog.Debian.gz",
                                "usr/share/doc/pellum/copyright",
                                "usr/share/lintian/overrides/pellum"};
    for (const fs::path& name : installed) {
        const fs::path folder = "usr" / name.parent_path();
        if (name.filename() == "LICENSE") continue;
        if (folder.parent_path() == "usr/share/man") {
            names.insert(folder / (name.filename().string() + ".gz"));
        } else if (folder == "usr/share/zsh/site-functions") {
            names.insert(folder.parent_path() / "vendor-completions" / name.filename());
        } else {
            names.insert(folder / name.filename());
        }
    }
    return names;
}

std::string field(const fs::path& package, const char* name) {
    return std::string(trim(runCommand({"dpkg-deb", "-f", package, name}).output));
}

void expectDescription(const fs::path& package) {
    EXPECT_EQ(field(package, "Package"), "pellum");
    EXPECT_EQ(field(package, "Section"), "interpreters");
    EXPECT_TRUE(field(package, "Version").starts_with(PELLUM_VERSION "-"));
#ifdef PELLUM_STATIC
    EXPECT_EQ(field(package, "Depends"), "");
#else
    EXPECT_TRUE(field(package, "Depends").starts_with("libc6 (>= ")) << field(package, "Depends");
#endif
    const std::string description = field(package, "Description");
    EXPECT_TRUE(description.starts_with("small scripting language\n Pellum is ")) << description;
}

// REQUIRES: the package is unpacked in `root`.
void expectContents(const fs::path& root) {
    const TemporaryFolder prefix;
    ASSERT_EQ(install({"--prefix", prefix.path(), "--component", "program"}).status, 0);
    const std::set<fs::path> names = namesUnder(root);
    EXPECT_EQ(names, inDebiansWay(namesUnder(prefix.path())));
    for (const fs::path& name : names) {
        const auto permissions = static_cast<unsigned>(fs::status(root / name).permissions());
        EXPECT_EQ(permissions, name.parent_path() == "usr/bin" ? 0755U : 0644U) << name;
    }
    EXPECT_EQ(runCommand({"gzip", "-dc", root / "usr/share/man/man1/pellum.1.gz"}).output,
              readFile("man/pellum.1"));
    const std::string copyright = readFile(root / "usr/share/doc/pellum/copyright");
    for (const std::string& line : splitLines(readFile("LICENSE"))) {
        if (line == "MIT License" || line.starts_with("Copyright") || line.empty()) continue;
        EXPECT_NE(copyright.find("\n " + line + "\n"), copyright.npos) << line;
    }
}

TEST(DebianPackage, HasWhatIsInstalledWhereDebianWantsIt) {
#ifndef PELLUM_IS_FOR_USE
    GTEST_SKIP() << "packages are made of builds for use";
#endif
    for (const char* tool : {"cpack", "dpkg-deb", "dpkg-shlibdeps", "file", "strip", "gzip"}) {
        if (!isInstalled(tool)) GTEST_SKIP() << "there is no " << tool;
    }
    const TemporaryFolder made, root;
    // Whoever builds for Ninja needs no target "preinstall": it would build whatever is not up to
    // date, and that in the middle of the tests.
    const Outcome cpack =
        runCommand({"cpack", "--config", std::string(PELLUM_BUILD) + "/CPackConfig.cmake", "-G",
                    "DEB", "-B", made.path(), "-D", "CPACK_CMAKE_GENERATOR=Ninja", "-D",
                    "CPACK_DEBIAN_COMPRESSION_TYPE=gzip"});
    ASSERT_EQ(cpack.status, 0) << cpack.output << cpack.errors;
    fs::path package;
    for (const fs::directory_entry& entry : fs::directory_iterator(made.path())) {
        if (entry.path().filename().string().starts_with("pellum_")) package = entry.path();
    }
    expectDescription(package);
    ASSERT_EQ(runCommand({"dpkg-deb", "-x", package, root.path()}), (Outcome{0, "", ""}));
    expectContents(root.path());

    Process program;
    program.executable = root.path() / "usr/bin/pellum";
    program.arguments = {"-c", "print(6 * 7)"};
    EXPECT_EQ(program.run(), (Outcome{0, "42\n", ""}));
}

}  // namespace

}  // namespace pellum::test
