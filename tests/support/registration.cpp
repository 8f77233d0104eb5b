#include "support/registration.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace pellum::test {

namespace {

class FoundTest : public testing::Test {
public:
    explicit FoundTest(std::function<void()> body) : body_(std::move(body)) {}
    void TestBody() override {
        body_();
        if (HasFailure()) std::cout << "run it again with\n  " << rerunCommand() << std::endl;
    }

private:
    std::function<void()> body_;
};

bool updates = false;

}  // namespace

void addTest(const std::string& suite, const std::string& name, const std::filesystem::path& file,
             std::function<void()> body) {
    testing::RegisterTest(
        suite.c_str(), name.c_str(), nullptr, nullptr, file.c_str(), 1,
        [body = std::move(body)]() -> testing::Test* { return new FoundTest(body); });
}

bool mayRun(std::string_view beginning) {
    const std::string_view filter = testing::GTEST_FLAG(filter);
    const std::string_view wanted = filter.substr(0, filter.find('-'));
    if (wanted.empty() || wanted.find(':') != wanted.npos) return true;
    const std::size_t star = wanted.find('*');
    const std::size_t length = std::min(beginning.size(), star);
    const auto matches = [](char given, char pattern) {
        return pattern == '?' || pattern == given;
    };
    return wanted.size() >= length &&
           std::equal(beginning.begin(), beginning.begin() + static_cast<std::ptrdiff_t>(length),
                      wanted.begin(), matches);
}

std::string suiteName(const std::filesystem::path& path) {
    std::string name = std::filesystem::path(path).replace_extension().generic_string();
    if (name.starts_with("tests/")) name.erase(0, 6);
    return name;
}

std::string filterFor(std::string_view name) {
    std::string filter(name);
    for (char& c : filter) {
        if (c == '-' || c == ':' || c == '*') c = '?';  // these mean something in a filter
    }
    return filter;
}

std::string executablePath() { return std::filesystem::read_symlink("/proc/self/exe").string(); }

std::string rerunCommand() {
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(test.test_suite_name()) + "." + test.name();
    return executablePath() + " --gtest_filter='" + filterFor(name) + "'";
}

bool updatesExpectations() { return updates; }
void setUpdatesExpectations(bool newValue) { updates = newValue; }

}  // namespace pellum::test
