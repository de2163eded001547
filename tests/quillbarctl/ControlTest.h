#pragma once

#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/Bookmarks.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryHome.h"

namespace test {

// Runs the program in a fresh home, without a display.
class ControlTest : public testing::Test {
protected:
    ChildProcess Start(std::vector<std::string> arguments, const std::string& input = "") const {
        Write("input", input);
        arguments.insert(arguments.begin(),
                         {"/bin/sh", "-c", R"(exec "$0" "$@" <"$INPUT")", QUILLBARCTL_BINARY});
        return ChildProcess({.arguments = arguments,
                             .environment = {{"DISPLAY", ""}, {"INPUT", At("input")}},
                             .output = At("output"),
                             .errors = At("errors")});
    }
    // To its end; returns its status.
    int Run(const std::vector<std::string>& arguments, const std::string& input = "") const {
        return Start(arguments, input).Wait(std::chrono::seconds(60)).value_or(-1);
    }
    std::string Output() const { return Read("output"); }
    std::string Errors() const { return Read("errors"); }

    // What the program lists, line by line.
    std::vector<std::string> Lines() const {
        EXPECT_EQ(Run({"list"}), 0) << Errors();
        std::istringstream output(Output());
        std::vector<std::string> lines;
        for (std::string line; std::getline(output, line);)
            lines.push_back(line);
        return lines;
    }

    std::filesystem::path At(const std::string& name) const { return fHome.Path() / name; }
    std::filesystem::path Root() const { return fHome.Config() / "Quillbar"; }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(At(name), std::ios::binary) << text;
    }
    std::string Read(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(At(name), std::ios::binary).rdbuf();
        return text.str();
    }
    // All of a folder, hidden names too.
    static std::vector<std::string> NamesIn(const std::filesystem::path& folder) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path().filename());
        return names;
    }

    const TemporaryHome fHome;
};

} // namespace test
