#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/TemporaryHome.h"

namespace test {

// A fresh home folder; paths in the tests are the platform's.
class StorageTest : public testing::Test {
protected:
    static std::string In(const std::string& name) { return "/boot/home/" + name; }
    std::string OnDisk(const std::string& name) const { return (fHome.Path() / name).string(); }

    void MakeFile(const std::string& name, const std::string& text = "") const {
        std::ofstream file(OnDisk(name));
        file << text;
        EXPECT_TRUE(file.good()) << name;
    }
    void MakeFolder(const std::string& name) const {
        EXPECT_TRUE(std::filesystem::create_directory(OnDisk(name))) << name;
    }
    void MakeLink(const std::string& name, const std::string& target) const {
        std::filesystem::create_symlink(target, OnDisk(name));
    }

    TemporaryHome fHome;
};

} // namespace test
