// The main function of every test program. What a test leaves in the folder for temporary files is
// a failure of its program, and is kept there.

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <iostream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// Outlive the static objects, whose folders go before the check.
const fs::path* sFolder = nullptr;
pid_t sOwner = 0;

void CheckFolder() {
    std::error_code error;
    if (getpid() != sOwner || fs::remove(*sFolder, error))
        return;
    for (const auto& entry : fs::directory_iterator(*sFolder))
        std::cerr << "left behind: " << entry.path() << "\n";
    _exit(1);
}

void MakeFolder() {
    std::string path = (fs::temp_directory_path() / "test-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr)
        std::abort();
    // Programs that run as an ordinary user go through it.
    fs::permissions(path, fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add);
    sFolder = new fs::path(path);
    sOwner = getpid();
    setenv("TMPDIR", path.c_str(), 1);
    setenv("TEST_TMPDIR", (path + "/").c_str(), 1);
    std::atexit(CheckFolder);
}

} // namespace

int main(int count, char** arguments) {
    signal(SIGPIPE, SIG_IGN);
    testing::InitGoogleMock(&count, arguments);
    // The process of a death test works in the folder of the one that started it.
    if (getenv("TEST_TMPDIR") == nullptr)
        MakeFolder();
    return RUN_ALL_TESTS();
}
