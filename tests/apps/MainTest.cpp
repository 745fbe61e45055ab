// The quillbrook program as its users start it.
#if defined(QB_WITH_CLI) && defined(QB_QUILLBROOK)

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

TEST(Quillbrook, VersionIsOneLineAndExitsZero) {
    FILE* out = ::popen(QB_QUILLBROOK " --version", "r");
    ASSERT_NE(out, nullptr);
    std::string text;
    char buffer[128];
    while (std::fgets(buffer, sizeof buffer, out)) text += buffer;
    EXPECT_EQ(::pclose(out), 0);
    EXPECT_EQ(text.rfind("quillbrook ", 0), 0u) << text;
    EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
}

}  // namespace

#endif
