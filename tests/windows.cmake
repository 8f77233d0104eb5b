# The units that mean something on Windows, as a program of their own. What Pellum programs print there
# is played from outside, by script/package. Run it in the root of the repository.

# Debian has it for Windows as sources only.
add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

set(here ${CMAKE_CURRENT_SOURCE_DIR})
file(GLOB test_sources CONFIGURE_DEPENDS
    ${here}/agreement/*_test.cpp
    ${here}/embed/*_test.cpp
    ${here}/tools/*.cpp
    ${here}/unit/*.cpp)
# What is left out starts processes, counts allocations, needs small limits, or is about what only
# other systems have.
list(FILTER test_sources EXCLUDE REGEX
    "/(consumers|descriptor_buffers|history|lifetimes|lint_command|memory|process|replace_file|sizes|test_formats)_test")
add_executable(pellum_tests ${test_sources}
    agreement/comparison.cpp
    support/comments.cpp
    support/expectations.cpp
    support/files.cpp
    support/findings.cpp
    support/markdown.cpp
    support/playing.cpp
    support/small_stack.cpp)
target_include_directories(pellum_tests PRIVATE ${here} ${PROJECT_SOURCE_DIR})
target_link_libraries(pellum_tests PRIVATE
    pellum_format pellum_lint pellum_core pellum_embed pellum_generator pellum_linking
    GTest::gtest_main)
target_compile_definitions(pellum_tests PRIVATE
    PELLUM_ROOT="${PROJECT_SOURCE_DIR}" PELLUM_VERSION="${PROJECT_VERSION}")
# GCC 12 sees bounds broken inside std::string.
target_compile_options(pellum_tests PRIVATE -O1 -Wno-array-bounds -Wno-stringop-overflow)
