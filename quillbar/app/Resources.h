#pragma once

#include "kits/app/AppResources.h"

// The program's description of itself, with its icons.
extern const app_resources kAppResources;
