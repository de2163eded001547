#pragma once

#include "base/Types.h"

// The platform's raw key codes of the keypad's digits, by digit.
inline constexpr int32 kKeypadDigits[10] = {0x64, 0x58, 0x59, 0x5a, 0x48,
                                            0x49, 0x4a, 0x37, 0x38, 0x39};

// The digit on a key of the keypad, or -1 for any other key.
constexpr int DigitOfKeypad(int32 key) {
    for (int digit = 0; digit < 10; ++digit) {
        if (kKeypadDigits[digit] == key)
            return digit;
    }
    return -1;
}
