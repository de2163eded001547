#pragma once

#include "host/draw/Font.h"
#include "host/x11/Display.h"
#include "kits/interface/drawing/Font.h"

inline host::FontSpec SpecOf(const BFont& font) {
    return {font.Size(), (font.Face() & B_BOLD_FACE) != 0};
}

inline double DisplayScale() {
    host::Display* display = host::Display::Shared();
    return display ? display->Scale() : 1;
}
