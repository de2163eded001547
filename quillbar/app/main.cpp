#include "kits/app/AppResources.h"
#include "kits/interface/Font.h"
#include "kits/interface/Window.h"
#include "quillbar/app/Application.h"
#include "quillbar/app/Resources.h"

int main() {
    // Takes longest of all that the first picture needs.
    prepare_fonts();
    set_app_resources(&kAppResources);
    // A second start ends in here and waits for nothing of that.
    QBApp app;
    if (connect_display() != B_OK)
        return 1;
    app.Run();
    return app.ExitStatus();
}
