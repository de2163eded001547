#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/Bitmap.h"
#include "kits/interface/window/View.h"
#include "kits/interface/window/WindowState.h"

#include <algorithm>

// Where drawing goes: null while the view is in no window or bitmap, or its window has no picture
// yet.
host::Canvas* BView::Canvas() {
    host::Canvas* canvas = nullptr;
    if (fWindow != nullptr)
        canvas = fWindow->fState->CanvasFor(*this);
    else if (BBitmap* bitmap = Bitmap())
        canvas = bitmap->CanvasFor(*this);
    if (canvas != nullptr) {
        canvas->SetBlending(fDrawingMode == B_OP_COPY ? host::Blending::Replace
                                                      : host::Blending::Over);
    }
    return canvas;
}

BBitmap* BView::Bitmap() const {
    const BView* top = this;
    while (top->fParent != nullptr)
        top = top->fParent;
    return top->fBitmap;
}

void BView::StrokeLine(BPoint from, BPoint to) {
    fPen = to;
    BPoint origin = OriginInWindow();
    if (host::Canvas* canvas = Canvas())
        canvas->StrokeLine(from + origin, to + origin, fHighColor);
}

void BView::StrokeRect(BRect rect) {
    if (host::Canvas* canvas = Canvas())
        canvas->StrokeRect(rect.OffsetByCopy(OriginInWindow()), fHighColor);
}

void BView::FillRect(BRect rect) {
    if (host::Canvas* canvas = Canvas())
        canvas->FillRect(rect.OffsetByCopy(OriginInWindow()), fHighColor);
}

void BView::FillPolygon(const BPoint* points, int32 count) {
    host::Canvas* canvas = Canvas();
    if (canvas == nullptr || points == nullptr || count <= 0)
        return;
    BPoint origin = OriginInWindow();
    std::vector<BPoint> corners(points, points + count);
    for (BPoint& corner : corners)
        corner += origin;
    canvas->FillPolygon(corners, fHighColor);
}

void BView::FillEllipse(BRect frame) {
    if (host::Canvas* canvas = Canvas())
        canvas->FillEllipse(frame.OffsetByCopy(OriginInWindow()), fHighColor);
}

void BView::DrawBitmap(const BBitmap* bitmap, BPoint where) {
    host::Canvas* canvas = Canvas();
    if (canvas == nullptr || bitmap == nullptr || !bitmap->IsValid())
        return;
    bool isConstant = fDrawingMode == B_OP_ALPHA && fSourceAlpha == B_CONSTANT_ALPHA;
    canvas->DrawImage(bitmap->Picture(),
                      bitmap->Bounds().OffsetToCopy(where).OffsetByCopy(OriginInWindow()),
                      isConstant ? fHighColor.alpha / 255.0 : 1);
}

void BView::DrawString(const char* string, BPoint baseline) {
    if (string == nullptr)
        return;
    fPen = baseline + BPoint(StringWidth(string), 0);
    if (host::Canvas* canvas = Canvas())
        canvas->DrawText(SpecOf(fFont), string, baseline + OriginInWindow(), fHighColor);
}

void BView::Invalidate(BRect rect) {
    if (fWindow == nullptr || IsHidden())
        return;
    fWindow->fState->Invalidate(rect.OffsetByCopy(OriginInWindow()) & VisibleRect());
}

void BView::Flush() const {
    if (fWindow != nullptr)
        fWindow->Flush();
}

void BView::Sync() const {
    if (fWindow != nullptr)
        fWindow->Sync();
}
