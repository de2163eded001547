#pragma once

#include <cstddef>

#include "base/TypeConstants.h"

// The size in bytes that every value of this type has, or 0 if values differ in size. Any thread.
size_t SizeOfType(type_code type);
