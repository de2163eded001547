// Dragging out of a view.

#include <cmath>
#include <memory>

#include "kits/interface/drawing/Bitmap.h"
#include "kits/interface/window/DragData.h"
#include "kits/interface/window/DraggedFile.h"
#include "kits/interface/window/WindowState.h"

status_t BView::DragMessage(const BMessage* message, BBitmap* image, drawing_mode, BPoint offset,
                            BHandler* replyTo) {
    const std::unique_ptr<BBitmap> owned(image);
    if (message == nullptr)
        return B_BAD_VALUE;
    if (fWindow == nullptr || !fWindow->fState->host)
        return B_NO_INIT;
    BWindow::State& state = *fWindow->fState;
    const BMessenger sender(replyTo != nullptr ? replyTo : this);
    host::DragSpec spec{.data = DragDataOf(*message), .fileName = DragFileNameOf(*message)};
    if (image != nullptr && image->IsValid()) {
        spec.image = image->Picture();
        spec.hotX = static_cast<int>(std::floor(offset.x * state.scale));
        spec.hotY = static_cast<int>(std::floor(offset.y * state.scale));
    }
    auto file = std::make_shared<DraggedFile>(BMessenger(fWindow), sender);
    state.draggedFile = file;
    const status_t status = state.host->Drag(spec, file);
    if (status == B_OK)
        state.EndPress();
    return status;
}
