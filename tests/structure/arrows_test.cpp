// The rooms of the house and who may know whom: every #include under src/ is one arrow.
#include "structure/cpp_source.h"
#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace pellum::test {

namespace {

struct Room {
    std::string_view name;
    std::vector<std::string_view> knows;
};

// "driver/errors" stands before "driver", in which it lies.
const std::vector<Room> rooms = {
    {"value", {}},
    {"driver/errors", {"value"}},
    {"operations", {"driver/errors", "value"}},
    {"lexer", {"driver/errors", "value"}},
    {"parser", {"lexer", "driver/errors", "value"}},
    {"builtins", {"operations", "driver/errors", "value"}},
    {"interp", {"parser", "builtins", "operations", "driver/errors", "value"}},
    {"compiler", {"parser", "driver/errors", "value"}},
    {"vm", {"compiler", "builtins", "operations", "driver/errors", "value"}},
    {"embed",
     {"value", "driver/errors", "operations", "lexer", "parser", "builtins", "compiler", "vm"}},
    {"driver",
     {"value", "driver/errors", "operations", "lexer", "parser", "builtins", "interp", "compiler",
      "vm"}},
    {"main.cpp", {"driver"}},
};

// The rooms below tools/. They may know all rooms of the core, in which nobody knows them.
const std::vector<Room> toolRooms = {
    {"common", {}},
    {"format", {"common"}},
    {"lint", {"common"}},
};

// The room in `house` of a path below its folder, or null.
const Room* roomOf(std::string_view path, const std::vector<Room>& house = rooms) {
    const auto room = std::find_if(house.begin(), house.end(), [&](const Room& candidate) {
        return path.starts_with(candidate.name) &&
               (path.size() == candidate.name.size() || path[candidate.name.size()] == '/');
    });
    return room == house.end() ? nullptr : &*room;
}

bool mayKnow(const Room& from, const Room& to) {
    return &from == &to ||
           std::find(from.knows.begin(), from.knows.end(), to.name) != from.knows.end();
}

TEST(Structure, EveryIncludeIsAnArrowOfTheHouse) {
    for (const auto& file : filesUnder("src", "")) {
        const std::string path = file.lexically_relative("src").generic_string();
        const Room* from = roomOf(path);
        ASSERT_TRUE(from) << file << " stands in no room";
        for (const CppInclude& include : quotedIncludes(readFile(file))) {
            const Room* to = roomOf(include.path);
            if (!to || !std::filesystem::exists("src/" + include.path)) {
                ADD_FAILURE_AT(file.c_str(), static_cast<int>(include.line))
                    << "\"" << include.path << "\" names no file below src/";
            } else if (!mayKnow(*from, *to)) {
                ADD_FAILURE_AT(file.c_str(), static_cast<int>(include.line))
                    << "a wrong arrow: " << from->name << " -> " << to->name << " (" << path
                    << " includes " << include.path << ")";
            }
        }
    }
}

// Whether the path, as an #include under tools/ writes it, names a file of the core.
bool isOfCore(const std::string& path) {
    return roomOf(path) && std::filesystem::exists("src/" + path);
}

TEST(Structure, ToolsKnowTheCoreAndWhatTheyShare) {
    for (const auto& file : filesUnder("tools", "")) {
        const std::string extension = file.extension().string();
        if (extension != ".h" && extension != ".cpp") continue;
        const std::string path = file.lexically_relative("tools").generic_string();
        const Room* from = roomOf(path, toolRooms);
        ASSERT_TRUE(from) << file << " stands in no room";
        for (const CppInclude& include : quotedIncludes(readFile(file))) {
            if (isOfCore(include.path)) continue;
            const Room* to = roomOf(include.path, toolRooms);
            if (!to || !std::filesystem::exists("tools/" + include.path) || !mayKnow(*from, *to)) {
                ADD_FAILURE_AT(file.c_str(), static_cast<int>(include.line))
                    << "a wrong arrow: " << path << " includes " << include.path;
            }
        }
    }
}

}  // namespace

}  // namespace pellum::test
