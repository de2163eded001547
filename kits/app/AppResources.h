#pragma once

#include <span>

#include "base/Types.h"

// How often a program may run at the same time.
enum : uint32 {
    B_MULTIPLE_LAUNCH = 1,  // as often as it is started
    B_EXCLUSIVE_LAUNCH = 2, // once per signature and user; a second start wakes the first
};

// The stages of development that a version belongs to.
enum : uint32 {
    B_DEVELOPMENT_VERSION = 0,
    B_BETA_VERSION = 2,
};

struct app_version {
    uint32 major = 0;
    uint32 middle = 0;
    uint32 minor = 0;
    uint32 variety = B_DEVELOPMENT_VERSION;
    uint32 internal = 0;
};

// A square picture, `size` times `size` words 0xAARRGGBB, not premultiplied, row by row from the
// top. `pixels` null stands for no picture.
struct app_icon {
    int32 size = 0;
    const uint32* pixels = nullptr;
};

// The program's description of itself. Plain data that the program keeps as a constant; a null
// pointer stands for an empty value.
struct app_resources {
    const char* signature = nullptr;
    const char* file_type = nullptr;
    uint32 launch_flags = B_MULTIPLE_LAUNCH;
    app_version version;
    const char* short_description = nullptr;
    const char* long_description = nullptr;
    std::span<const char* const> supported_types;
    app_icon large_icon;
    app_icon mini_icon;
};

// Sets the resources of this program; main() does so before it builds the application object.
// They are not copied and stay the caller's, until the process ends. Null takes them away.
void set_app_resources(const app_resources* resources);

// The resources of this program; never null: without any, all values are empty. Any thread.
const app_resources* get_app_resources();
