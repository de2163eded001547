#include "quillbar/about/AboutWindow.h"

#include "quillbar/about/AboutView.h"

namespace {

constexpr float kWidth = 365;
constexpr float kHeight = 204;

} // namespace

QBAboutWindow::QBAboutWindow(BRect frame)
    : BWindow(BRect(frame.left, frame.top, frame.left + kWidth, frame.top + kHeight),
              "About Quillbar", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL,
              B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE) {
    InitWindow();
}

QBAboutWindow::~QBAboutWindow() = default;

void QBAboutWindow::InitWindow() {
    fAboutView = new QBAboutView(BRect(0, 0, Frame().Width(), Frame().Height()));
    AddChild(fAboutView);
}
