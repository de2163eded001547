#include "kits/app/AppResources.h"
#include "kits/interface/Window.h"
#include "quillbar/app/Application.h"
#include "quillbar/app/Resources.h"

int main() {
    set_app_resources(&kAppResources);
    // A second start ends in here, before it has done anything that takes time.
    QBApp app;
    if (connect_display() != B_OK)
        return 1;
    app.Run();
    return app.ExitStatus();
}
