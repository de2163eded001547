#include "quillbar/store/Alerts.h"

#include <cstring>

#include "kits/interface/controls/Alert.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/text/TextView.h"
#include "kits/support/String.h"

namespace {

constexpr float kHeadingSize = 16;

BAlert* NewAlert(const char* text, alert_type type) {
    return new BAlert("", text, "OK", nullptr, nullptr, B_WIDTH_AS_USUAL, type);
}

BAlert* NewAlert(const char* heading, rgb_color color, const char* text, alert_type type) {
    BString whole;
    whole << heading << "\n\n" << text << "\n";
    BAlert* alert = NewAlert(whole.String(), type);
    BTextView* view = alert->TextView();
    view->SetStylable(true);
    BFont font;
    view->GetFont(&font);
    font.SetSize(kHeadingSize);
    view->SetFontAndColor(0, static_cast<int32>(std::strlen(heading)), &font, B_FONT_ALL, &color);
    return alert;
}

} // namespace

void AlertError(const char* text) {
    NewAlert("ERROR:", rgb_color{255, 0, 0, 255}, text, B_STOP_ALERT)->Go();
}

void AlertWarning(const char* text) {
    NewAlert("WARNING:", rgb_color{255, 124, 0, 255}, text, B_WARNING_ALERT)->Go(nullptr);
}

void AlertMsg(const char* text) {
    NewAlert(text, B_INFO_ALERT)->Go(nullptr);
}
