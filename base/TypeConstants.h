#pragma once

#include "base/Types.h"

// The types of message fields and attributes.
enum : type_code {
    B_ANY_TYPE = 'ANYT',
    B_BOOL_TYPE = 'BOOL',
    B_INT8_TYPE = 'BYTE',
    B_UINT8_TYPE = 'UBYT',
    B_INT16_TYPE = 'SHRT',
    B_INT32_TYPE = 'LONG',
    B_UINT32_TYPE = 'ULNG',
    B_INT64_TYPE = 'LLNG',
    B_FLOAT_TYPE = 'FLOT',
    B_DOUBLE_TYPE = 'DBLE',
    B_STRING_TYPE = 'CSTR',
    B_POINT_TYPE = 'BPNT',
    B_RECT_TYPE = 'RECT',
    B_RGB_COLOR_TYPE = 'RGBC',
    B_POINTER_TYPE = 'PNTR',
    B_REF_TYPE = 'RREF',
    B_MIME_TYPE = 'MIME',
    B_RAW_TYPE = 'RAWT',
};
