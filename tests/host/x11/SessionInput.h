#pragma once

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ChildProcess.h"

namespace host {

// The layout, as setxkbmap's -layout has it, and more arguments of that program.
inline void SetLayout(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"setxkbmap", "-option", "", "-layout"});
    test::ChildProcess::Options options;
    options.arguments = std::move(arguments);
    EXPECT_EQ(test::ChildProcess(options).Wait(), 0);
}

} // namespace host
