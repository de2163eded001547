// What the program makes of its arguments, and of a display that is not there.

#include <gmock/gmock.h>

#include "tests/desktop/Program.h"

using namespace test;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class OptionsTest : public testing::Test {
protected:
    // Runs it on that display to its end, and returns its status.
    int Run(std::vector<std::string> arguments, const std::string& display = "") {
        arguments.insert(arguments.begin(), Program::Path());
        ChildProcess program(
            {.arguments = arguments,
             .environment = {{"DISPLAY", display}, {"XDG_RUNTIME_DIR", fHome.Runtime()}},
             .output = fHome.Path() / "output",
             .errors = fHome.Path() / "errors"});
        return program.Wait().value_or(-1);
    }
    std::string Output() const { return Program::TextIn(fHome.Path() / "output"); }
    std::string Errors() const { return Program::TextIn(fHome.Path() / "errors"); }

    const TemporaryHome fHome;
};

TEST_F(OptionsTest, HelpAndVersionNeedNoDisplayAndTouchNothing) {
    EXPECT_EQ(Run({"--version"}), 0);
    EXPECT_EQ(Output(), "quillbar " QUILLBAR_VERSION "\n");
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_EQ(Run({"--help"}), 0);
    EXPECT_THAT(Output(), StartsWith("Usage: quillbar"));
    for (const char* option : {"--help", "--version"})
        EXPECT_THAT(Output(), HasSubstr(option));
    EXPECT_THAT(Errors(), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(fHome.Runtime()));
    EXPECT_FALSE(std::filesystem::exists(fHome.Config() / "Quillbar"));
}

TEST_F(OptionsTest, AnythingElseIsAnErrorWithAHint) {
    for (const char* argument : {"--Help", "-h", "--", "", "http://site.example/"}) {
        EXPECT_EQ(Run({argument}), 2) << argument;
        EXPECT_THAT(Errors(), HasSubstr(std::string(": ") + argument + "\n")) << argument;
        EXPECT_THAT(Errors(), HasSubstr("quillbar --help")) << argument;
        EXPECT_THAT(Output(), IsEmpty()) << argument;
    }
    EXPECT_EQ(Run({"--version", "--verbose"}), 2);
}

TEST_F(OptionsTest, AMissingDisplayIsNamedAndEndsItWithOne) {
    EXPECT_EQ(Run({}, ":987654"), 1);
    EXPECT_THAT(Errors(), StartsWith("quillbar: cannot use the display :987654: "));
    EXPECT_EQ(Run({}, ""), 1);
    EXPECT_THAT(Errors(), HasSubstr("DISPLAY is not set"));
}

} // namespace
