#pragma once

#include "tests/support/Desk.h"
