#pragma once

#include "kits/interface/drawing/Font.h"

// `font`, or the same in the largest size below at which `label` is not wider than `width`: a label
// that has a little less room than it needs is still read better smaller than cut. Labels that need
// a far smaller one are to be cut.
BFont LabelFont(const BFont& font, const char* label, float width);
