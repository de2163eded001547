#include "kits/app/AppResources.h"

#include <atomic>

namespace {

constexpr app_resources kNoResources;
constinit std::atomic<const app_resources*> sResources = &kNoResources;

} // namespace

void set_app_resources(const app_resources* resources) {
    sResources = resources ? resources : &kNoResources;
}

const app_resources* get_app_resources() {
    return sResources;
}
