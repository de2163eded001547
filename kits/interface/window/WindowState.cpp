#include "kits/interface/window/WindowState.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kits/interface/drawing/Font.h"
#include "kits/interface/window/Screen.h"
#include "kits/interface/window/WindowRoster.h"

namespace {

constexpr float kMaxSide = 16000;
constexpr float kEnoughGrip = 20; // wide and high, to be taken hold of

// A program's numbers may come from a settings file.
float UsablePlace(float at) {
    return std::isnan(at) ? 0 : std::clamp(at, -32000.0f, 32000.0f);
}

float UsableSide(float length) {
    return std::isnan(length) ? 0 : std::clamp(std::floor(length + 0.5f), 0.0f, kMaxSide);
}

int DeviceLength(float logical, double scale) {
    return std::clamp(static_cast<int>(std::floor((logical + 1) * scale + 0.5)), 1, 16384);
}

std::unique_ptr<host::HostWindow> CreateHostWindow(const host::WindowSpec& spec,
                                                   host::WindowSink* sink) {
    host::Display* display = host::Display::Shared();
    return display ? display->CreateWindow(spec, sink) : nullptr;
}

} // namespace

BWindow::State::State(BWindow* window_, BRect frame, const char* title_, window_look look_,
                      window_feel feel_, uint32 flags_, uint32 workspaces_)
    : window(window_)
    , scale(DisplayScale())
    , title(title_ ? title_ : "")
    , look(look_)
    , builtFeel(feel_)
    , feel(feel_)
    , flags(flags_)
    , workspaces(workspaces_)
    , place(UsablePlace(frame.left), UsablePlace(frame.top))
    , width(UsableSide(frame.Width()))
    , height(UsableSide(frame.Height()))
    , device(DeviceFrame())
    , root(Bounds(), "root", B_FOLLOW_ALL, 0)
    , translator(BMessenger(window), scale, Role())
    , host(CreateHostWindow(Spec(), &translator)) {
    Invalidate(Bounds());
}

WindowRole BWindow::State::Role() const {
    if (IsMenu())
        return WindowRole::Menu;
    if (IsAlert())
        return WindowRole::Alert;
    bool isMain = look == B_BORDERED_WINDOW_LOOK && (flags & B_NOT_CLOSABLE) != 0;
    return isMain ? WindowRole::Main : WindowRole::Other;
}

host::PixelRect BWindow::State::DeviceFrame() const {
    int left = DevicePlace(place.x, scale);
    int top = DevicePlace(place.y, scale);
    return {left, top, left + DeviceLength(width, scale), top + DeviceLength(height, scale)};
}

bool BWindow::State::IsBubble() const {
    constexpr uint32 kBubbleFlags = B_NOT_MOVABLE | B_AVOID_FOCUS;
    return look == B_BORDERED_WINDOW_LOOK && builtFeel == B_FLOATING_ALL_WINDOW_FEEL &&
           (flags & kBubbleFlags) == kBubbleFlags;
}

host::WindowSpec BWindow::State::Spec() const {
    host::WindowSpec spec;
    if (IsMenu())
        spec.kind = host::WindowKind::Menu;
    else if (IsBubble())
        spec.kind = host::WindowKind::Bubble;
    else if (IsAlert())
        spec.kind = host::WindowKind::Alert;
    else if (look == B_BORDERED_WINDOW_LOOK)
        spec.kind = host::WindowKind::Bar;
    spec.frame = device;
    if (look == B_BORDERED_WINDOW_LOOK)
        spec.border = DeviceLength(0, scale);
    spec.title = title;
    spec.resizable = (flags & B_NOT_RESIZABLE) == 0;
    spec.closable = (flags & B_NOT_CLOSABLE) == 0;
    spec.minimizable = (flags & B_NOT_MINIMIZABLE) == 0;
    spec.floating = feel == B_FLOATING_ALL_WINDOW_FEEL;
    spec.allDesktops = workspaces == B_ALL_WORKSPACES;
    return spec;
}

void BWindow::State::SetFrame(BPoint newPlace, float newWidth, float newHeight) {
    BRect oldBounds = Bounds();
    place = BPoint(UsablePlace(newPlace.x), UsablePlace(newPlace.y));
    width = UsableSide(newWidth);
    height = UsableSide(newHeight);
    host::PixelRect asked = DeviceFrame();
    if (asked != device) {
        device = asked;
        host->SetFrame(device);
        WindowRoster::Shared().FrameChanged(window, device);
    }
    if (Bounds() != oldBounds)
        ContentResized(oldBounds);
}

// What the program set stays as it is unless the host's frame differs from it, so that nothing is
// changed by rounding forth and back.
void BWindow::State::TakeFrame(const host::PixelRect& now) {
    // Nobody else moves it, and its own moves may have been overtaken by later ones.
    if (IsBubble())
        return;
    BRect oldBounds = Bounds();
    if (now.left != device.left)
        place.x = static_cast<float>(now.left / scale);
    if (now.top != device.top)
        place.y = static_cast<float>(now.top / scale);
    if (now.Width() != device.Width())
        width = static_cast<float>(now.Width() / scale) - 1;
    if (now.Height() != device.Height())
        height = static_cast<float>(now.Height() / scale) - 1;
    device = now;
    WindowRoster::Shared().FrameChanged(window, device);
    if (Bounds() != oldBounds)
        ContentResized(oldBounds);
}

void BWindow::State::ContentResized(BRect oldBounds) {
    ClipChanged();
    if (canvas)
        canvas->Resize(device.Width(), device.Height());
    root.ResizeTo(std::ceil(width), std::ceil(height));
    ClipRegion added(Bounds());
    added.Exclude(oldBounds);
    for (const BRect& rect : added.Rects())
        Invalidate(rect);
}

host::PixelRect BWindow::State::GripOnScreen() const {
    const BRect part = grip.IsValid() ? grip : Bounds();
    const int left = device.left + DevicePlace(part.left, scale);
    const int top = device.top + DevicePlace(part.top, scale);
    return {left, top, left + DeviceLength(part.Width(), scale),
            top + DeviceLength(part.Height(), scale)};
}

void BWindow::State::BringInside() {
    if (IsMenu() || IsBubble())
        return;
    int border = Spec().border;
    host::PixelRect whole{device.left - border, device.top - border, device.right + border,
                          device.bottom + border};
    const std::vector<host::PixelRect> monitors = host::Display::Shared()->Monitors();
    if (IsInReach(monitors, GripOnScreen(), DeviceLength(kEnoughGrip - 1, scale)))
        return;
    const host::PixelRect inside = MovedInside(monitors, whole);
    window->MoveTo(static_cast<float>((inside.left + border) / scale),
                   static_cast<float>((inside.top + border) / scale));
}

void BWindow::State::FollowSettings() {
    if (double now = DisplayScale(); now != scale) {
        scale = now;
        translator.SetScale(now);
        place =
            BPoint(static_cast<float>(device.left / scale), static_cast<float>(device.top / scale));
        canvas.reset();
        damage = ClipRegion();
        ClipChanged();
        device = DeviceFrame();
        WindowRoster::Shared().FrameChanged(window, device);
        host->SetBorder(Spec().border);
        host->SetFrame(device);
        BringInside();
    }
    cursor = BCursor();
    host->SetPointer(host::PointerShape::Arrow);
    ShowCursor();
    Invalidate(Bounds());
}
