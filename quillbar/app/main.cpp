#include "kits/app/AppResources.h"
#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/Window.h"
#include "quillbar/app/Application.h"
#include "quillbar/app/Resources.h"

int main() {
    set_app_resources(&kAppResources);
    // A second start ends in here, before it has done anything that takes time.
    QBApp app;
    // The digits on the bar: their font takes longest of all that the first picture needs.
    const auto font = prepare_font(*be_bold_font);
    if (connect_display() != B_OK)
        return 1;
    app.Run();
    return app.ExitStatus();
}
