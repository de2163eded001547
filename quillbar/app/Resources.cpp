#include "quillbar/app/Resources.h"

#include "quillbar/app/Application.h"
#include "quillbar/app/Icon.h"

namespace {

constexpr auto kLargeIcon = DrawIcon<32>();
constexpr auto kMiniIcon = DrawIcon<16>();

} // namespace

const app_resources kAppResources = {
    .signature = kAppSig,
    .file_type = "application/x-vnd.Be-elfexecutable",
    .launch_flags = B_EXCLUSIVE_LAUNCH,
    .version = {QUILLBAR_VERSION},
    .short_description = "Quillbar",
    .long_description =
        "A nice application to organize up to 100 bookmarks in 10 different categories.",
    .supported_types = {},
    .large_icon = {32, kLargeIcon.data()},
    .mini_icon = {16, kMiniIcon.data()},
};
