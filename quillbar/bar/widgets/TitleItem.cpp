#include "quillbar/bar/widgets/TitleItem.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "kits/interface/drawing/Font.h"
#include "kits/interface/menus/Menu.h"

namespace {

constexpr float kExtraHeight = 4;

} // namespace

float QBTitleItem::FindTallest() const {
    const char* label = Label() ? Label() : "";
    std::vector<BRect> boxes(std::strlen(label));
    be_bold_font->GetBoundingBoxesAsGlyphs(label, static_cast<int32>(boxes.size()), B_SCREEN_METRIC,
                                           boxes.data());
    float tallest = 0;
    for (const BRect& box : boxes)
        tallest = std::max(tallest, box.Height());
    return tallest;
}

void QBTitleItem::GetContentSize(float* width, float* height) {
    *width = be_bold_font->StringWidth(Label());
    *height = FindTallest() + kExtraHeight;
}

void QBTitleItem::DrawContent() {
    BMenu* menu = Menu();
    if (!menu)
        return;
    BFont saved;
    menu->GetFont(&saved);
    menu->SetFont(be_bold_font, B_FONT_ALL);
    const BPoint content = ContentLocation();
    menu->MovePenTo(content.x, content.y + (Frame().Height() + FindTallest()) / 2);
    menu->DrawString(Label());
    menu->SetFont(&saved, B_FONT_ALL);
}
