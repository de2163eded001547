#pragma once

#include "kits/app/AppResources.h"

// What the program says about itself, with its icons.
extern const app_resources kAppResources;
